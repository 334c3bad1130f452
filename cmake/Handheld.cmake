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
