# What is installed, and the packages that are made of it:
#
#   cmake --install BUILD --prefix PREFIX                       for everybody: bin, share
#   cmake --install BUILD --prefix FOLDER --component portable  one folder that runs from where it lies
#   cpack -G DEB|TGZ --config BUILD/CPackConfig.cmake           the first as a Debian package, the second as an archive
#
# packaging/files.txt and packaging/files-portable.txt list what then lies where. The driver is in neither.
include(${CMAKE_SOURCE_DIR}/packaging/Changelog.cmake)

set(packaging ${CMAKE_SOURCE_DIR}/packaging)
set(packaged ${CMAKE_BINARY_DIR}/packaging)
set(tramble_programs ZUKTramble hotsync rdkinst handheld handheldwindow)

# ---- what is made for it ----

read_changelog(${CMAKE_SOURCE_DIR}/CHANGELOG.md)
set(page_date ${CHANGELOG_DATE})
configure_file(${packaging}/com.example.ZUKTramble.metainfo.xml.in ${packaged}/com.example.ZUKTramble.metainfo.xml @ONLY)
configure_file(${packaging}/README.txt.in ${packaged}/README.txt @ONLY NEWLINE_STYLE DOS)
foreach(program IN LISTS tramble_programs)
    configure_file(${packaging}/man/${program}.1.in ${packaged}/man/${program}.1 @ONLY)
endforeach()
file(CONFIGURE OUTPUT ${packaged}/changelog CONTENT "${CHANGELOG_DEBIAN}" @ONLY)

find_program(GZIP gzip)
if(GZIP)
    foreach(file IN ITEMS changelog man/ZUKTramble.1 man/hotsync.1 man/rdkinst.1 man/handheld.1 man/handheldwindow.1)
        execute_process(COMMAND ${GZIP} -9nc ${packaged}/${file} OUTPUT_FILE ${packaged}/${file}.gz
            COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
endif()

# The program's picture in the sizes that desktops ask for.
set(icon ${CMAKE_SOURCE_DIR}/resources/graphics/zuk1.svg)
set(icon_sizes 16 22 24 32 48 64 128 256)
set(icons "")
foreach(size IN LISTS icon_sizes)
    list(APPEND icons ${packaged}/icons/${size}.png)
endforeach()
add_executable(makeicons ${CMAKE_SOURCE_DIR}/tools/makeicons.cpp)
target_link_libraries(makeicons PRIVATE house Qt6::Gui)
add_custom_command(
    OUTPUT ${icons}
    COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen LSAN_OPTIONS=detect_leaks=0
        $<TARGET_FILE:makeicons> ${icon} ${packaged}/icons ${icon_sizes}
    DEPENDS makeicons ${icon}
    COMMENT "Making the program's icons"
    VERBATIM)
add_custom_target(icons ALL DEPENDS ${icons})

# ---- for everybody ----

install(TARGETS ${tramble_programs} RUNTIME DESTINATION bin COMPONENT programs)
install(DIRECTORY ${TRAMBLE_INSTALLED}/ DESTINATION share/zuk-tramble COMPONENT data
    PATTERN complete.txt EXCLUDE)
if(UNIX)
    install(FILES ${packaging}/com.example.ZUKTramble.desktop DESTINATION share/applications COMPONENT desktop)
    install(FILES ${packaged}/com.example.ZUKTramble.metainfo.xml DESTINATION share/metainfo COMPONENT desktop)
    install(FILES ${icon} DESTINATION share/icons/hicolor/scalable/apps RENAME zuk-tramble.svg COMPONENT desktop)
    foreach(size IN LISTS icon_sizes)
        install(FILES ${packaged}/icons/${size}.png DESTINATION share/icons/hicolor/${size}x${size}/apps
            RENAME zuk-tramble.png COMPONENT desktop)
    endforeach()
    install(FILES ${packaging}/copyright DESTINATION share/doc/zuk-tramble COMPONENT manual)
endif()
if(GZIP)
    install(FILES ${packaged}/changelog.gz DESTINATION share/doc/zuk-tramble COMPONENT manual)
    foreach(program IN LISTS tramble_programs)
        install(FILES ${packaged}/man/${program}.1.gz DESTINATION share/man/man1 COMPONENT manual)
    endforeach()
endif()

# ---- the portable folder ----

install(TARGETS ZUKTramble RUNTIME DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL)
install(TARGETS hotsync handheld handheldwindow RUNTIME DESTINATION HotSync COMPONENT portable EXCLUDE_FROM_ALL)
install(TARGETS rdkinst RUNTIME DESTINATION Install COMPONENT portable EXCLUDE_FROM_ALL)
install(DIRECTORY ${TRAMBLE_INSTALLED}/ DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL
    PATTERN complete.txt EXCLUDE)
install(FILES ${packaged}/README.txt ${CMAKE_SOURCE_DIR}/CHANGELOG.md ${packaging}/copyright
    DESTINATION . COMPONENT portable EXCLUDE_FROM_ALL)

# Libraries that somebody puts into the portable folder's lib come before the system's. What is installed for
# everybody has the system's alone.
if(UNIX AND NOT APPLE)
    set_target_properties(${tramble_programs} PROPERTIES
        BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN/lib;$ORIGIN/../lib")
    foreach(program IN LISTS tramble_programs)
        # They read what comes from a network: no table of addresses stays writable.
        target_link_options(${program} PRIVATE -Wl,-z,relro,-z,now)
        install(CODE "
            set(program \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/${program}\")
            if(NOT IS_SYMLINK \"\${program}\")
                file(RPATH_REMOVE FILE \"\${program}\")
            endif()" COMPONENT programs)
    endforeach()
endif()

# ---- the packages ----

set(CPACK_PACKAGE_NAME ZUKTramble)
set(CPACK_PACKAGE_VENDOR "the maintainers of ZUK Tramble PC")
set(CPACK_PACKAGE_CONTACT "the maintainers of ZUK Tramble PC <maintainers@example.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION_FILE ${packaging}/description.txt)
set(CPACK_PACKAGE_INSTALL_DIRECTORY "ZUK Tramble PC")
set(CPACK_PACKAGE_EXECUTABLES ZUKTramble "ZUK Tramble PC")
set(CPACK_RESOURCE_FILE_LICENSE ${packaging}/copyright)
set(CPACK_PACKAGE_FILE_NAME ZUKTramble-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE ${packaging}/PerGenerator.cmake)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
    set(CPACK_GENERATOR ZIP NSIS)
else()
    set(CPACK_GENERATOR DEB TGZ)
endif()

file(READ ${packaging}/description.txt description)
set(CPACK_DEBIAN_PACKAGE_NAME zuk-tramble)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${description}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What Qt loads by name: pictures, and the help file's database.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, libqt6sql6-sqlite")
# qt6-translations-l10n: Qt's own boxes in the language that the operator has chosen.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-qpa-plugins, qt6-translations-l10n, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
