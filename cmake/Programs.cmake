# The small programs beside ZUKTramble: the target `programs` is all of them.
add_custom_target(programs)
add_dependencies(programs handheld)

# Adds a program of src/<folder>/*.cpp, which lies in bin/ beside the others: small_program(NAME FOLDER LIBRARY...)
function(small_program name folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp ${CMAKE_SOURCE_DIR}/src/${folder}/*.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE ${ARGN})
    target_compile_definitions(${name} PRIVATE TRAMBLE_VERSION="${PROJECT_VERSION}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
    add_dependencies(programs ${name})
endfunction()

small_program(rdkinst rdkinst screens pictures)
small_program(hotsync hotsync/service hotsynccore screens pictures)
small_program(handheldwindow handheld/window screens pictures)

# The real programs and a program's place at the desk, for what is done over a real wire.
add_library(wirerig STATIC ${CMAKE_SOURCE_DIR}/tools/WireRig.cpp ${CMAKE_SOURCE_DIR}/tools/WireRig.h)
target_include_directories(wirerig PUBLIC ${CMAKE_SOURCE_DIR}/tools)
target_link_libraries(wirerig PUBLIC hotsynccore screens)
add_executable(wire ${CMAKE_SOURCE_DIR}/tools/wire.cpp)
target_link_libraries(wire PRIVATE wirerig)
set_target_properties(wire PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_dependencies(wire hotsync handheld)

add_executable(wirebench ${CMAKE_SOURCE_DIR}/bench/wire.cpp)
target_link_libraries(wirebench PRIVATE wirerig)
set_target_properties(wirebench PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_dependencies(wirebench hotsync handheld)
