# The help file: pages and pictures in one database, which the installed set holds beside the programs.
find_program(QHELPGENERATOR qhelpgenerator REQUIRED
    HINTS ${Qt6_DIR}/../../../qt6/libexec /usr/lib/qt6/libexec ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_LIBEXECS})

# Makes OUTPUT of a project file and what lies in its folder and in pictures/ there.
function(help_file project output)
    get_filename_component(folder ${project} DIRECTORY)
    file(GLOB pages CONFIGURE_DEPENDS ${folder}/*.htm ${folder}/*.css ${folder}/*.txt ${folder}/pictures/*)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${QHELPGENERATOR} -s -o ${output} ${project}
        DEPENDS ${project} ${pages}
        COMMENT "Making the help file"
        VERBATIM)
endfunction()

help_file(${CMAKE_SOURCE_DIR}/resources/help/Tramble_Help.qhp ${TRAMBLE_INSTALLED}/Tramble_Help.qch)
add_custom_target(helpfile ALL DEPENDS ${TRAMBLE_INSTALLED}/Tramble_Help.qch)
add_dependencies(installed_set helpfile)
