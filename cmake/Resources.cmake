# What is made at build time from resources/: the message catalogue, the list of tables, and the
# set of empty tables that an office is laid out with.
set(TRAMBLE_GENERATED ${CMAKE_BINARY_DIR}/generated)
set(TRAMBLE_INSTALLED ${CMAKE_BINARY_DIR}/installed)

add_executable(makeresources ${CMAKE_SOURCE_DIR}/tools/makeresources.cpp)
target_link_libraries(makeresources PRIVATE house)

file(GLOB table_files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/tables/*.tsv)
set(generated_files ${TRAMBLE_GENERATED}/core/Messages.h ${TRAMBLE_GENERATED}/MessageTable.cpp
    ${TRAMBLE_GENERATED}/TableList.cpp ${TRAMBLE_GENERATED}/English.tsv)
add_custom_command(
    OUTPUT ${generated_files}
    COMMAND makeresources ${CMAKE_SOURCE_DIR}/resources ${TRAMBLE_GENERATED}
    DEPENDS makeresources ${CMAKE_SOURCE_DIR}/resources/messages.tsv ${table_files}
    COMMENT "Making the catalogue and the list of tables"
    VERBATIM)
target_sources(engine PRIVATE ${generated_files})
target_include_directories(engine PUBLIC ${TRAMBLE_GENERATED})
add_custom_target(catalogue DEPENDS ${generated_files})

add_executable(makeinstall ${CMAKE_SOURCE_DIR}/tools/makeinstall.cpp ${CMAKE_SOURCE_DIR}/tools/Animations.cpp)
target_link_libraries(makeinstall PRIVATE engine)
file(GLOB install_inputs CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/graphics/*.svg
    ${CMAKE_SOURCE_DIR}/resources/templates/* ${CMAKE_SOURCE_DIR}/resources/languages/*.tsv)
add_custom_command(
    OUTPUT ${TRAMBLE_INSTALLED}/complete.txt
    COMMAND makeinstall ${CMAKE_SOURCE_DIR}/resources ${TRAMBLE_INSTALLED}
    DEPENDS makeinstall ${install_inputs}
    COMMENT "Making the installed set"
    VERBATIM)

# The handheld's files in it, with the demo company; its tables lie in demo/ for whoever wants to look.
set(TRAMBLE_DEMO ${CMAKE_BINARY_DIR}/demo)
add_library(rowfile STATIC ${CMAKE_SOURCE_DIR}/tools/RowFile.cpp ${CMAKE_SOURCE_DIR}/tools/RowFile.h)
target_include_directories(rowfile PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(rowfile PUBLIC engine)
add_executable(makedemo ${CMAKE_SOURCE_DIR}/tools/makedemo.cpp)
target_link_libraries(makedemo PRIVATE rowfile handheldcore)
file(GLOB demo_rows CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/demo/*.tsv)
add_custom_command(
    OUTPUT ${TRAMBLE_DEMO}/complete.txt
    COMMAND makedemo ${CMAKE_SOURCE_DIR}/resources ${TRAMBLE_DEMO} ${TRAMBLE_INSTALLED}/Install ${PROJECT_VERSION}
    DEPENDS makedemo ${demo_rows}
    COMMENT "Making the demo company and the stand-ins of the handheld's programs"
    VERBATIM)
add_custom_target(installed_set ALL DEPENDS ${TRAMBLE_INSTALLED}/complete.txt ${TRAMBLE_DEMO}/complete.txt)

# Lays out an application directory from the installed set: layoutoffice INSTALLED OFFICE
add_executable(layoutoffice ${CMAKE_SOURCE_DIR}/tools/layoutoffice.cpp)
target_link_libraries(layoutoffice PRIVATE engine)

# Fills tables from text files of rows: filltables OFFICE FILE...
add_executable(filltables ${CMAKE_SOURCE_DIR}/tools/filltables.cpp)
target_link_libraries(filltables PRIVATE rowfile)
