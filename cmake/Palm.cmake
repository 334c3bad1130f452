# What desktop and handheld share: databases and the wire, bytes in and bytes out. Standard C++ alone.
include(EngineRules)

file(GLOB palm_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/palm/*.cpp ${CMAKE_SOURCE_DIR}/src/palm/*.h)
refuse_qt_headers(${palm_sources})
add_library(palm STATIC ${palm_sources})
target_link_libraries(palm PUBLIC house)
set_target_properties(palm PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
refuse_qt_libraries(palm)
target_precompile_headers(palm REUSE_FROM engine)
