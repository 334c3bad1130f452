# The HotSync Manager's files and rules, which know no screen either: src/hotsync without its forms/.
file(GLOB hotsync_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/hotsync/*.cpp)
file(GLOB hotsync_headers CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/hotsync/*.h)
refuse_qt_headers(${hotsync_sources} ${hotsync_headers})

add_library(hotsynccore STATIC ${hotsync_sources} ${hotsync_headers})
target_link_libraries(hotsynccore PUBLIC engine palm)
set_target_properties(hotsynccore PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
refuse_qt_libraries(hotsynccore)
target_precompile_headers(hotsynccore REUSE_FROM engine)
