# The stand-in handheld: what it is and does, without Qt, and the program `handheld` around it.
include(EngineRules)

set(handheld_folder ${CMAKE_SOURCE_DIR}/src/handheld)
file(GLOB handheld_sources CONFIGURE_DEPENDS ${handheld_folder}/*.cpp ${handheld_folder}/*.h)
list(REMOVE_ITEM handheld_sources ${handheld_folder}/main.cpp)
refuse_qt_headers(${handheld_sources})
add_library(handheldcore STATIC ${handheld_sources})
target_link_libraries(handheldcore PUBLIC engine palm)
set_target_properties(handheldcore PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
refuse_qt_libraries(handheldcore)

if(NOT TRAMBLE_HEADLESS)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core Network)
    add_executable(handheld ${handheld_folder}/main.cpp
        ${handheld_folder}/line/HotSyncLine.cpp ${handheld_folder}/line/HotSyncLine.h)
    target_link_libraries(handheld PRIVATE handheldcore Qt6::Core Qt6::Network)
    set_target_properties(handheld PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endif()
