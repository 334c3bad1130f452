# Lays out a small tree whose documents are not true, and fails unless the rules over documents say so.
file(REMOVE_RECURSE ${WORK})
file(WRITE ${WORK}/src/core/Lines.h "#include \"views/Grid.h\"\nclass Lines {};\n")
file(WRITE ${WORK}/src/core/README.md "`Lines`, `Circles`\n")
file(WRITE ${WORK}/src/views/Grid.h "class Grid {};\n")
string(REPEAT "a line\n" 31 long)
file(WRITE ${WORK}/src/views/README.md ${long})
file(WRITE ${WORK}/src/quality/Check.h "class Check {};\n")
file(WRITE ${WORK}/src/views/forms/frmView.h "#include \"palm/Dlp.h\"\n")
file(WRITE ${WORK}/docs/architecture.md "[a page](gone.md), `src/core/Gone.h`, `Lines::Join`, `Lines`\n")
file(WRITE ${WORK}/docs/parts.svg "<path id=\"quality-views\" d=\"M0 0\"/>\n")

# Runs the rule over the tree; each of the texts behind it must be said.
function(expect_refusal rule)
    execute_process(COMMAND ${CMAKE_COMMAND} -DSOURCE=${WORK} -P ${RULES}/${rule}.cmake
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(result EQUAL 0)
        message(FATAL_ERROR "${rule}.cmake has not found that the documents are not true")
    endif()
    string(REGEX REPLACE "[ \n]+" " " output "${output}") # it comes in lines of 77 characters
    foreach(words IN LISTS ARGN)
        string(FIND "${output}" "${words}" found)
        if(found EQUAL -1)
            message(FATAL_ERROR "${rule}.cmake does not say \"${words}\":\n${output}")
        endif()
    endforeach()
endfunction()

expect_refusal(architecture "no arrow for: core-views" "no include stands for: quality-views"
    "views/forms includes from palm")
expect_refusal(readmes "src/core/README.md names Circles" "src/quality has no README.md"
    "src/views/README.md has 31 lines")
expect_refusal(links "links gone.md" "names src/core/Gone.h" "names Lines::Join")
file(REMOVE_RECURSE ${WORK})
