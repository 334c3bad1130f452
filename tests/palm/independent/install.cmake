# Installs palm-pdb below WORK, as package-lock.json in SOURCE says, unless it is there already. Fails
# where it cannot be had.
set(installed ${WORK}/installed.json) # the lock file of what is installed
if(EXISTS ${installed})
    file(SHA256 ${SOURCE}/package-lock.json wanted)
    file(SHA256 ${installed} there)
    if(wanted STREQUAL there)
        return()
    endif()
endif()

find_program(NPM npm)
find_program(NODE node)
if(NOT NPM OR NOT NODE)
    message(FATAL_ERROR "The commands node and npm are needed: `npm ci` installs palm-pdb for this test.")
endif()
file(REMOVE_RECURSE ${WORK})
file(COPY ${SOURCE}/package.json ${SOURCE}/package-lock.json DESTINATION ${WORK})
execute_process(COMMAND ${NPM} ci --ignore-scripts --no-audit --no-fund --prefer-offline --logs-max=0
        --update-notifier=false --fetch-retries=1 --loglevel=error
    WORKING_DIRECTORY ${WORK} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "This test needs `npm ci` to install palm-pdb in ${WORK}, and it failed:\n${output}")
endif()
file(COPY_FILE ${WORK}/package-lock.json ${installed})
