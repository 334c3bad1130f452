# The small programs beside ZUKTramble: the target `programs` is all of them.
add_custom_target(programs)

# Adds a program of src/<name>/*.cpp, which lies in bin/ beside the others: small_program(NAME LIBRARY...)
function(small_program name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp ${CMAKE_SOURCE_DIR}/src/${name}/*.h)
    add_executable(${name} ${sources})
    target_link_libraries(${name} PRIVATE ${ARGN})
    target_compile_definitions(${name} PRIVATE TRAMBLE_VERSION="${PROJECT_VERSION}")
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
    add_dependencies(programs ${name})
endfunction()

small_program(rdkinst screens pictures)
