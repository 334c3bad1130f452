# The walls of the engine. A Qt header in an engine folder, or a Qt library behind the
# engine's target, stops the configuration.

# Fails when one of the files includes a Qt header, in whatever way it is spelled.
function(refuse_qt_headers)
    foreach(file IN LISTS ARGN)
        file(STRINGS ${file} found REGEX "#[ \t]*include[ \t]*[<\"]([^>\"]*/)?(Q[A-Z]|Qt)")
        if(found)
            list(GET found 0 first)
            message(FATAL_ERROR "The engine knows no screen: ${file} says ${first}")
        endif()
    endforeach()
endfunction()

# Fails when a target links a Qt library.
function(refuse_qt_libraries target)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    if(libraries MATCHES "Qt[0-9]*::|Qt[0-9]*(Core|Gui|Widgets|Network)")
        message(FATAL_ERROR "The engine knows no screen: target ${target} links ${libraries}")
    endif()
endfunction()

# Adds src/<name>/*.cpp, without its forms/, to the engine.
function(engine_folder name)
    set(folder ${CMAKE_SOURCE_DIR}/src/${name})
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
    file(GLOB headers CONFIGURE_DEPENDS ${folder}/*.h)
    refuse_qt_headers(${sources} ${headers})
    target_sources(engine PRIVATE ${sources} ${headers})
endfunction()
