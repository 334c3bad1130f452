# One way to tables: outside src/store nobody opens a file for reading and writing in place, but
# the disk itself and the two that replace whole files.
file(GLOB_RECURSE sources ${SOURCE}/src/*.cpp)
foreach(file IN LISTS sources)
    if(file MATCHES "/src/(store|driver)/" OR file MATCHES "/src/(core/(Disk|SafeFile)[A-Za-z]*|maintenance/Office)\\.cpp$")
        continue()
    endif()
    file(STRINGS ${file} found REGEX "Access::(ReadWrite|Create)|std::(o|i)?fstream|fopen|QFile ")
    if(found)
        message(FATAL_ERROR "${file} opens a file's bytes by itself: ${found}")
    endif()
endforeach()
