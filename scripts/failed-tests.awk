# Reads a log of ctest with what failed tests wrote, prints of each its line and the words of what did not go
# well. Of the gtest library's tests those that went well are left out; of one that ended the program in the
# middle everything stands.
function close_case() {
    for (k = 1; k <= held; ++k) print kept[k]
    held = 0
}
/^ *[0-9]+\/[0-9]+ Test +#/ { close_case(); failed = /\*\*\*/; if (failed) print; next }
/^ +Start +[0-9]+: / { close_case(); failed = 0 }
!failed { next }
/^\[ RUN      \] / { close_case() }
/^\[       OK \] / { held = 0; next }
{ kept[++held] = $0 }
END { close_case() }
