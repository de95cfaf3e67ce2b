# Fuzzing, as .ci/run does for seconds and tests/full.sh for minutes. Sourced behind steps.sh.

# fuzz_names: the readers of which there is a libFuzzer program.
fuzz_names() {
    local target
    for target in build/fuzz/bin/fuzz_*; do
        case $target in
        *_replay | *'*') ;;
        *) echo "${target##*/fuzz_}" ;;
        esac
    done
}

# fuzz_one NAME: leaves build/fuzz/passed/NAME behind when nothing was found.
fuzz_one() {
    local name=$1 dictionary=() scratch=()
    [ ! -w /dev/shm ] || scratch=(env QUARN_FUZZ_SCRATCH=/dev/shm)
    mkdir -p "build/fuzz/corpus/$name"
    [ ! -f "fuzz/$name.dict" ] || dictionary=("-dict=fuzz/$name.dict")
    quietly "fuzz-$name" "${scratch[@]}" "build/fuzz/bin/fuzz_$name" \
        -max_total_time="$fuzz_seconds" -timeout=10 -rss_limit_mb=1024 -malloc_limit_mb=256 \
        -artifact_prefix="build/fuzz/findings/$name-" "${dictionary[@]}" \
        "build/fuzz/corpus/$name" "fuzz/corpus/$name" && touch "build/fuzz/passed/$name"
}
export -f fuzz_one quietly
export root

# fuzz_all SECONDS: every reader for so long, as many at a time as there are jobs.
fuzz_all() {
    rm -rf build/fuzz/passed
    mkdir -p build/fuzz/passed build/fuzz/findings
    fuzz_names | fuzz_seconds=$1 xargs -P "$jobs" -I '{}' bash -c 'fuzz_one {}'
}

# fuzz_passed NAME
fuzz_passed() { test -e "build/fuzz/passed/$1"; }

# fuzz_figures NAME: "123 executions, 45 edges".
fuzz_figures() {
    sed -nE 's/^#([0-9]+)[[:blank:]]+DONE[[:blank:]]+cov: ([0-9]+) .*/\1 executions, \2 edges/p' \
        "$root/build/logs/fuzz-$1.log" | tail -n 1
}
