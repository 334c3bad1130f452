# Each suite of a gtest program is one test of ctest, named after the suite: the program then starts once a
# suite and not once a test, which with the sanitizers is most of the time of a short test. What a suite
# says, ctest shows when it fails, and ./test counts the tests in it.
#
#     grouped_tests(PROGRAM [FILTER "-Suite.*"] [ENVIRONMENT NAME=VALUE])
function(grouped_tests program)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "FILTER;ENVIRONMENT" "")
    set(list ${CMAKE_CURRENT_BINARY_DIR}/${program}_suites.cmake)
    # Written when ctest starts, since the suites are in the program.
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${program}_list.cmake CONTENT
"if(NOT EXISTS \"${list}\" OR \"$<TARGET_FILE:${program}>\" IS_NEWER_THAN \"${list}\")
    set(PROGRAM \"$<TARGET_FILE:${program}>\")
    set(LIST \"${list}\")
    set(FILTER \"$<IF:$<BOOL:${arg_FILTER}>,${arg_FILTER},*>\")
    set(SUITE_ENVIRONMENT \"${arg_ENVIRONMENT}\")
    include(\"${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ListSuites.cmake\")
endif()
include(\"${list}\")
")
    set_property(DIRECTORY APPEND PROPERTY
        TEST_INCLUDE_FILES ${CMAKE_CURRENT_BINARY_DIR}/${program}_list.cmake)
endfunction()
