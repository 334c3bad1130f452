# What a package holds goes by its kind: an archive is the portable folder, the others are for everybody.
if(CPACK_GENERATOR MATCHES "^(TGZ|TXZ|ZIP|7Z)$")
    string(REPLACE ";ALL;" ";portable;" CPACK_INSTALL_CMAKE_PROJECTS "${CPACK_INSTALL_CMAKE_PROJECTS}")
    set(CPACK_PACKAGING_INSTALL_PREFIX /)
elseif(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()
