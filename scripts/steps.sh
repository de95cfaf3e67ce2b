# The steps that test.sh, demo.sh and .ci/run are made of. Sourced; expects $root, the repository.

passed=0
failed=0
skipped=0
mkdir -p "$root/build/logs"
# Two jobs at least, and no more than the machine has processors.
jobs=$(nproc)
[ "$jobs" -ge 2 ] || jobs=2

say() { echo "== $*"; }

# quietly LOG COMMAND...: the command's output goes to the log, and is shown only when it fails.
quietly() {
    local log=$root/build/logs/$1.log
    shift
    "$@" </dev/null >"$log" 2>&1 && return 0
    tail -n 60 "$log" >&2
    echo "failed: $* (whole output: $log)" >&2
    return 1
}

# build PRESET [CONFIGURE ARGUMENT...]
build() {
    local preset=$1
    shift
    say "Building $preset"
    quietly "$preset-configure" cmake --preset "$preset" "$@" &&
        quietly "$preset-build" cmake --build --preset "$preset" --parallel "$jobs"
}

# run_tests PRESET [CTEST ARGUMENT...]: shows what fails and adds to the totals.
run_tests() {
    local preset=$1 results=$root/build/logs/$1-tests.xml status=0 run fail skip
    shift
    say "Testing $preset"
    rm -rf "$results" "$root/build/$preset/results"
    # One more than processors: some tests wait for others.
    ctest --preset "$preset" --parallel $((jobs + 1)) --output-junit "$results" "$@" </dev/null |
        awk '!/^ +Start +[0-9]+: / && !/ Passed +[0-9.]+ sec$/ && !/^Test project /'
    status=${PIPESTATUS[0]}
    # The end of the Wine server is a step of CTest's, no test. A program that ran all its tests in one process counts
    # as what its own results say, as one failed test if it left none.
    read -r run fail skip < <(awk -v programs="$root/build/$preset/results/" '
        function attribute(name) {
            return match($0, " " name "=\"[^\"]*\"") ? substr($0, RSTART + length(name) + 3, RLENGTH - length(name) - 4) : ""
        }
        /<testcase / && !/name="wine_server_ends".*status="run"/ {
            state = attribute("status")
            file = programs attribute("name") ".xml"
            if ((getline < file) > 0 && (getline < file) > 0) {
                failures = attribute("failures") + attribute("errors")
                total = attribute("tests") - attribute("disabled") - failures
                skip += attribute("disabled")
                while ((getline < file) > 0)
                    if (/<testcase / && attribute("result") == "skipped") { total--; skip++ }
                close(file)
                run += total
                fail += state == "run" || failures ? failures : 1
            }
            else if (state == "run") run++
            else if (state == "disabled") skip++
            else if (state == "notrun") notrun = 1
            else fail++
        }
        # What a test skips itself is skipped; a test whose program is missing has failed.
        notrun && /<skipped / { if (/SKIP_/) skip++; else fail++; notrun = 0 }
        END { print run + 0, fail + 0, skip + 0 }' "$results" 2>/dev/null)
    if [ "$status" != 0 ] && [ "${fail:-0}" = 0 ]; then
        echo "The tests of $preset did not run to their end." >&2
        fail=1
    fi
    passed=$((passed + ${run:-0}))
    failed=$((failed + ${fail:-0}))
    skipped=$((skipped + ${skip:-0}))
}

# step NAME COMMAND...: a step that passes or fails as a whole and is no test by itself.
step() {
    local name=$1
    shift
    if ! "$@"; then
        echo "FAILED: $name" >&2
        failed=$((failed + 1))
    fi
}

# The last line, and the exit status: something ran, and nothing failed.
finish() {
    echo
    if [ "$skipped" -gt 0 ]; then
        echo "$passed passed, $failed failed, $skipped skipped"
    else
        echo "$passed passed, $failed failed"
    fi
    [ "$failed" = 0 ] && [ "$passed" -gt 0 ]
    exit
}
