# What `cmake --install` puts where, against the lists in packaging/. Links stand for the files, which are large.
#
#   cmake -DBUILD=build/dev -DSOURCE=. -DWORK=FOLDER [-DRENEW=ON] -P tests/packaging/files.cmake
#
# RENEW writes the lists anew: look at what has changed before you commit them.
set(ENV{CMAKE_INSTALL_MODE} ABS_SYMLINK)
set(ENV{DESTDIR} "")
set(wrong "")

function(compare list)
    file(REMOVE_RECURSE ${WORK})
    execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK} ${ARGN}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB_RECURSE found LIST_DIRECTORIES false RELATIVE ${WORK} ${WORK}/*)
    file(REMOVE_RECURSE ${WORK})
    list(SORT found)
    string(REPLACE ";" "\n" found "${found}\n")
    if(RENEW)
        file(WRITE ${SOURCE}/packaging/${list} "${found}")
    endif()
    file(READ ${SOURCE}/packaging/${list} expected)
    if(NOT found STREQUAL expected)
        string(REPLACE "\n" ";" found "${found}")
        string(REPLACE "\n" ";" expected "${expected}")
        set(missing ${expected})
        list(REMOVE_ITEM missing ${found})
        set(unexpected ${found})
        list(REMOVE_ITEM unexpected ${expected})
        message(SEND_ERROR "packaging/${list}: not installed: ${missing}; not in the list: ${unexpected}")
    endif()
endfunction()

compare(files.txt)
compare(files-portable.txt --component portable)

# A part alone, below a folder that stands for the root.
file(REMOVE_RECURSE ${WORK})
set(ENV{DESTDIR} ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix /opt/tramble --component manual
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE found LIST_DIRECTORIES false RELATIVE ${WORK} ${WORK}/*)
foreach(file IN LISTS found)
    if(NOT file MATCHES "^opt/tramble/share/(man|doc)/")
        message(SEND_ERROR "The manual's part installs ${file}")
    endif()
endforeach()
if(NOT found MATCHES "opt/tramble/share/man/man1/ZUKTramble.1.gz")
    message(SEND_ERROR "The manual's part installs no manual: ${found}")
endif()
file(REMOVE_RECURSE ${WORK})
