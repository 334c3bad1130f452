# The driver of whole programs from outside: a plugin that Qt loads into the program, and the client
# that tests and scripts talk through. Neither is installed.
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network)

set(driver_folder ${CMAKE_SOURCE_DIR}/src/driver)

add_library(trambledriver MODULE
    ${driver_folder}/BoxJudge.cpp ${driver_folder}/BoxJudge.h
    ${driver_folder}/Desk.cpp ${driver_folder}/Desk.h
    ${driver_folder}/Driver.cpp ${driver_folder}/Driver.h
    ${driver_folder}/DriverPlugin.cpp
    ${driver_folder}/Hands.cpp ${driver_folder}/Hands.h
    ${driver_folder}/Reading.cpp ${driver_folder}/Reading.h
    ${driver_folder}/Refused.h
    ${driver_folder}/Request.cpp ${driver_folder}/Request.h)
target_link_libraries(trambledriver PRIVATE house Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Network)
set_target_properties(trambledriver PROPERTIES
    AUTOMOC ON
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/plugins/generic)

add_library(driverclient STATIC
    ${driver_folder}/DriverClient.cpp ${driver_folder}/DriverClient.h
    ${driver_folder}/DriverLine.cpp ${driver_folder}/DriverLine.h)
target_link_libraries(driverclient PUBLIC house Qt6::Core PRIVATE Qt6::Network)
target_compile_definitions(driverclient PRIVATE TRAMBLE_DRIVER_PLUGINS="${CMAKE_BINARY_DIR}/plugins")
# Whoever starts a program through the client needs the plugin on the disk.
add_dependencies(driverclient trambledriver)
