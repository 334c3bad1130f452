# What every target of this project is compiled with: the interface target `house`.
add_library(house INTERFACE)
target_include_directories(house INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(MSVC)
    target_compile_options(house INTERFACE /W4 /utf-8 /permissive-)
    target_compile_definitions(house INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
else()
    target_compile_options(house INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
        -Wold-style-cast -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # This compiler sees overlaps in its own std::string where there are none.
        target_compile_options(house INTERFACE -Wno-restrict)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Without it ccache cannot keep what is compiled with a precompiled header.
        target_compile_options(house INTERFACE -fpch-preprocess)
    endif()
endif()
# A target with the property TEST_CODE holds nothing but tests, or what drives whole programs for them. What they
# call is what the sanitizers look at: optimised and checked for undefined behaviour themselves, they would take
# three times as long to compile.
set(test_code "$<BOOL:$<TARGET_PROPERTY:TEST_CODE>>")
if(TRAMBLE_SANITIZE)
    target_compile_options(house INTERFACE
        "$<IF:${test_code},-fsanitize=address;-O0,-fsanitize=address$<COMMA>undefined;-fno-sanitize-recover=undefined>"
        -fno-omit-frame-pointer)
    target_link_options(house INTERFACE -fsanitize=address,undefined)
endif()
if(TRAMBLE_FUZZ)
    target_compile_options(house INTERFACE -fsanitize=fuzzer-no-link)
    target_link_options(house INTERFACE -fsanitize=fuzzer-no-link)
endif()
