# The engine: all folders under src/ that know no screen, one static library.
include(EngineRules)

add_library(engine STATIC)
target_link_libraries(engine PUBLIC house)
set_target_properties(engine PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)

foreach(folder core store sync exchange maintenance views quality tools help installation)
    engine_folder(${folder})
endforeach()

refuse_qt_libraries(engine)

# The standard library's headers that nearly every file takes in, read once for all targets under the engine's
# rules. The presets bench and fuzz build without, so that a forgotten #include shows.
target_precompile_headers(engine PRIVATE <algorithm> <charconv> <cstdint> <filesystem> <functional> <map> <memory>
    <optional> <set> <string> <string_view> <utility> <vector>)
