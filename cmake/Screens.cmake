# The screens: all forms and what stands in for the platform, one static library that links the
# engine; and the programs.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network PrintSupport Help)
include(Help)

set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTOUIC ON)
set(CMAKE_AUTORCC ON)
# moc cannot read the standard library's concepts; told nothing of C++20 it passes them by.
set(CMAKE_AUTOMOC_COMPILER_PREDEFINES OFF)

file(GLOB screen_sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/src/platform/*.cpp ${CMAKE_SOURCE_DIR}/src/platform/*.h
    ${CMAKE_SOURCE_DIR}/src/*/forms/*.cpp ${CMAKE_SOURCE_DIR}/src/*/forms/*.h
    ${CMAKE_SOURCE_DIR}/src/*/forms/*.ui)
file(GLOB form_uis CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*/forms/*.ui)
file(GLOB pictures CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR}/resources ${CMAKE_SOURCE_DIR}/resources/graphics/*.svg)

add_library(screens STATIC ${screen_sources})
target_link_libraries(screens PUBLIC engine hotsynccore handheldline Qt6::Widgets Qt6::Network Qt6::PrintSupport Qt6::Help)
# A form's header takes in what the form's layout was made into.
target_include_directories(screens PUBLIC ${CMAKE_BINARY_DIR}/screens_autogen/include)
target_precompile_headers(screens PRIVATE <QtWidgets> <string> <vector>)
foreach(ui IN LISTS form_uis)
    get_filename_component(folder ${ui} DIRECTORY)
    set_property(TARGET screens APPEND PROPERTY AUTOUIC_SEARCH_PATHS ${folder})
endforeach()

# Every form of the program by its name, for what looks at all of them.
set(all_forms "// Made by the build: every form of the program.\n")
set(form_list "")
file(GLOB form_headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*/forms/frm*.h)
foreach(path IN LISTS form_headers)
    get_filename_component(form ${path} NAME_WE)
    file(RELATIVE_PATH header ${CMAKE_SOURCE_DIR}/src ${path})
    string(APPEND all_forms "#include \"${header}\"\n")
    string(APPEND form_list " \\\n    FORM(${form})")
endforeach()
file(CONFIGURE OUTPUT ${TRAMBLE_GENERATED}/AllForms.h
    CONTENT "${all_forms}#define ALL_FORMS(FORM)${form_list}\n" @ONLY)

# The pictures go into the programs, below :/graphics.
set(qrc "<RCC><qresource prefix=\"/\">\n")
foreach(picture IN LISTS pictures)
    string(APPEND qrc "<file alias=\"${picture}\">${CMAKE_SOURCE_DIR}/resources/${picture}</file>\n")
endforeach()
file(CONFIGURE OUTPUT ${TRAMBLE_GENERATED}/pictures.qrc CONTENT "${qrc}</qresource></RCC>\n" @ONLY)
add_library(pictures OBJECT ${TRAMBLE_GENERATED}/pictures.qrc)
target_link_libraries(pictures PRIVATE Qt6::Core)

add_executable(ZUKTramble ${CMAKE_SOURCE_DIR}/src/program/main.cpp)
target_link_libraries(ZUKTramble PRIVATE screens pictures)
target_compile_definitions(ZUKTramble PRIVATE TRAMBLE_VERSION="${PROJECT_VERSION}")
set_target_properties(ZUKTramble PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin WIN32_EXECUTABLE ON)

include(Driver)
include(Programs)

# The demonstration of a working day, and the pictures of all screens.
add_library(officeforday STATIC ${CMAKE_SOURCE_DIR}/tools/OfficeForDay.cpp ${CMAKE_SOURCE_DIR}/tools/OfficeForDay.h)
target_include_directories(officeforday PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(officeforday PUBLIC house Qt6::Core)

add_library(mappingbykeys STATIC ${CMAKE_SOURCE_DIR}/tools/MappingByKeys.cpp ${CMAKE_SOURCE_DIR}/tools/MappingByKeys.h)
target_include_directories(mappingbykeys PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(mappingbykeys PUBLIC driverclient PRIVATE engine)

add_library(runningoffice STATIC ${CMAKE_SOURCE_DIR}/tools/RunningOffice.cpp ${CMAKE_SOURCE_DIR}/tools/RunningOffice.h)
target_include_directories(runningoffice PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(runningoffice PUBLIC officeforday driverclient PRIVATE screens)

add_executable(day ${CMAKE_SOURCE_DIR}/tools/day.cpp ${CMAKE_SOURCE_DIR}/tools/LoopOfDay.cpp
    ${CMAKE_SOURCE_DIR}/tools/LoopOfDay.h)
target_link_libraries(day PRIVATE mappingbykeys runningoffice screens)

add_library(screensbykeys STATIC ${CMAKE_SOURCE_DIR}/tools/ScreensByKeys.cpp ${CMAKE_SOURCE_DIR}/tools/ScreensByKeys.h
    ${CMAKE_SOURCE_DIR}/tools/FilledTables.cpp ${CMAKE_SOURCE_DIR}/tools/FilledTables.h
    ${CMAKE_SOURCE_DIR}/tools/OfficeForKeys.cpp ${CMAKE_SOURCE_DIR}/tools/OfficeForKeys.h)
target_include_directories(screensbykeys PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(screensbykeys PUBLIC driverclient officeforday engine)
add_executable(keys ${CMAKE_SOURCE_DIR}/tools/keys.cpp)
target_link_libraries(keys PRIVATE screensbykeys)

# What is wrong with a window as it stands.
add_library(layoutcheck STATIC ${CMAKE_SOURCE_DIR}/tools/LayoutCheck.cpp ${CMAKE_SOURCE_DIR}/tools/LayoutCheck.h)
target_include_directories(layoutcheck PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(layoutcheck PUBLIC screens)

file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tools/pictures/*.cpp ${CMAKE_SOURCE_DIR}/tools/pictures/*.h)
add_executable(pictures_of_screens ${sources} ${CMAKE_SOURCE_DIR}/tools/FilledTables.cpp)
target_link_libraries(pictures_of_screens PRIVATE screens pictures officeforday layoutcheck)
target_compile_definitions(pictures_of_screens PRIVATE TRAMBLE_VERSION="${PROJECT_VERSION}")

# For packaging/test: an installed program's first morning.
add_executable(tryinstalled ${CMAKE_SOURCE_DIR}/tools/tryinstalled.cpp)
target_link_libraries(tryinstalled PRIVATE driverclient screens)

# For bench/compare: the time of a start.
add_executable(startup ${CMAKE_SOURCE_DIR}/bench/startup.cpp)
target_link_libraries(startup PRIVATE driverclient)

# For bench/day: a day of fifty handhelds.
add_executable(daybench ${CMAKE_SOURCE_DIR}/bench/day.cpp)
target_link_libraries(daybench PRIVATE runningoffice screens)
add_dependencies(daybench ZUKTramble hotsync rdkinst handheld trambledriver layoutoffice filltables)

set_target_properties(day daybench keys pictures_of_screens tryinstalled startup PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# What drives programs from outside is test code too: the sanitizers look at the programs.
set_target_properties(trambledriver driverclient officeforday mappingbykeys runningoffice day
    daybench screensbykeys keys pictures_of_screens layoutcheck
    tryinstalled startup wirerig wire wirebench PROPERTIES TEST_CODE ON)
