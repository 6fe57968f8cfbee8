# Sourced by the scripts that run tests and tell the sum; $scratch is a folder of theirs.
passed=0 failed=0 skipped=0

# run_tests <command that runs ctest>...: adds what its report says to the sum. A failure does not stop the script.
run_tests() {
    local report=$scratch/tests/report.xml all bad left
    mkdir -p "$scratch/tests"
    rm -f "$report"
    "$@" --output-junit "$report" || true
    all=$(sed -n 's/^\ttests="\([0-9]*\)".*/\1/p' "$report")
    bad=$(sed -n 's/^\tfailures="\([0-9]*\)".*/\1/p' "$report")
    left=$(sed -n 's/^\tskipped="\([0-9]*\)".*/\1/p' "$report")
    [ "$all" -gt 0 ]
    passed=$((passed + all - bad - left)) failed=$((failed + bad)) skipped=$((skipped + left))
}
