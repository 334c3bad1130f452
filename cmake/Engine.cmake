# The engine: all folders under src/ that know no screen, one static library.
include(EngineRules)

add_library(engine STATIC)
target_link_libraries(engine PUBLIC house)
set_target_properties(engine PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)

foreach(folder core store sync exchange maintenance views quality tools help installation)
    engine_folder(${folder})
endforeach()

refuse_qt_libraries(engine)
