# The engine: all folders under src/ that know no screen, one static library.
include(EngineRules)

add_library(engine STATIC)
target_link_libraries(engine PUBLIC house)
set_target_properties(engine PROPERTIES AUTOMOC OFF AUTOUIC OFF)

engine_folder(core)
engine_folder(store)
if(EXISTS ${CMAKE_SOURCE_DIR}/src/sync)
engine_folder(sync)
endif()
if(EXISTS ${CMAKE_SOURCE_DIR}/src/exchange)
engine_folder(exchange)
endif()
if(EXISTS ${CMAKE_SOURCE_DIR}/src/maintenance)
engine_folder(maintenance)
endif()

refuse_qt_libraries(engine)
