# Configures a small project that breaks a rule of cmake/EngineRules.cmake, and fails unless the
# configuration stops with the rule's words. BREAK is "header" or "library".
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/src/core)
file(WRITE ${WORK}/src/core/Good.cpp "#include <string>\nstd::string Good() { return {}; }\n")
set(rules "include(${RULES}/EngineRules.cmake)\nadd_library(engine STATIC)\nengine_folder(core)\n")
if(BREAK STREQUAL "header")
    file(WRITE ${WORK}/src/core/Bad.cpp "#include <QtCore/QString>\n")
else()
    string(APPEND rules "add_library(Qt6::Core INTERFACE IMPORTED)\ntarget_link_libraries(engine PRIVATE Qt6::Core)\n")
endif()
string(APPEND rules "refuse_qt_libraries(engine)\n")
file(WRITE ${WORK}/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)\nproject(rules CXX)\n${rules}")
execute_process(COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${WORK} -B ${WORK}/build
    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(result EQUAL 0 OR NOT output MATCHES "The engine knows no screen")
    message(FATAL_ERROR "The configuration was not refused:\n${output}")
endif()
file(REMOVE_RECURSE ${WORK})
