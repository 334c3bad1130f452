# Reads what ctest wrote into LastTest.log, prints how many tests passed and how many did not. A program of
# the gtest library counts for each of its tests; one that ends in the middle counts the rest as not passed.
function close_entry() {
    if (!open) return
    if (planned == 0) planned = 1
    if (planned == 1 && run == 0) ran_well = verdict == "Passed"
    missed_here = planned - ran_well
    if (verdict != "Passed" && missed_here == 0) missed_here = 1
    passed += ran_well
    missed += missed_here
    open = 0
}
/^[0-9]+\/[0-9]+ Testing: / { close_entry(); open = 1; planned = run = ran_well = 0; verdict = "none" }
/^\[==========\] Running [0-9]+ test/ { planned = $3 }
/^\[ RUN      \] / { run++ }
/^\[       OK \] / { ran_well++ }
/^Test (Passed|Failed)\.$/ { verdict = substr($2, 1, length($2) - 1) }
END { close_entry(); print passed + 0, missed + 0 }
