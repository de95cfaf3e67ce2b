#!/bin/bash
# The long forms of the tests that .ci/run makes short work of, on Debian 12 as test.sh; hours, for the nights.
#
#   tests/full.sh [FORM...] [--NUMBER N...]
#
# Forms, all of them by default:
#   kills       writers of settings and of a journal, killed at random moments; nothing may be lost
#   processes   eight processes at once on one settings file, one registry, one companion library
#   faults      every call of the system and every allocation that can fail, on Linux, under the sanitizers and Wine
#   zones       the native tests in five time zones
#   doubles     Format of random doubles against the C library's
#   documents   settings documents, good and bad, against a second XML library
#   fuzz        every reader of outside bytes, with the address and undefined-behaviour sanitizers
#
# Numbers: --kills (2000, of each writer), --saves (1000, by each process), --doubles (10000000),
# --documents (200000), --minutes (10, of fuzzing for each reader).
#
# Ends with a table of what was done; the exit status tells whether everything passed.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
. scripts/steps.sh
. scripts/packages.sh
. scripts/fuzz.sh

all=(kills processes faults zones doubles documents fuzz)
declare -A number=([kills]=2000 [saves]=1000 [doubles]=10000000 [documents]=200000 [minutes]=10)

usage() {
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0"
    exit 2
}

# ---- what a form is made of: it says what it does in $what, and what came of it in $figure.

# The build that programs are taken from.
preset=native-debug

# programs NAME...: builds these.
programs() {
    say "Building $* of $preset"
    quietly "$preset-configure" cmake --preset "$preset" &&
        quietly "$preset-build" cmake --build --preset "$preset" --parallel "$jobs" --target "$@"
}

# figures PROGRAM FILTER: runs tests; what they print as a figure becomes part of $figure.
figures() {
    local log=$root/build/logs/full-$form-$1.log status run=("../bin/$1")
    [ "$preset" != windows-release ] || run=("$root/scripts/wine-run" "$root/build/$preset/wine" "../bin/$1.exe")
    (cd "build/$preset/tests" && "${run[@]}" --gtest_filter="$2") </dev/null 2>&1 | tr -d '\r' >"$log"
    status=${PIPESTATUS[0]}
    figure+=$(sed -n 's/^figure: /; /p' "$log" | tr -d '\n')
    figure=${figure#; }
    # A filter that finds nothing passes, too.
    grep -q '^\[  PASSED  \] [1-9]' "$log" && [ "$status" = 0 ] && return
    tail -n 60 "$log" >&2
    return 1
}

# ---- the forms

kills() {
    what="${number[kills]} kills of each writer"
    programs reliability_test && QUARN_KILLS=${number[kills]} figures reliability_test 'Kills.*'
}

processes() {
    what="8 processes, ${number[saves]} times each"
    export QUARN_SAVES=${number[saves]}
    programs xml_process_test reliability_test library_test || return 1
    local status=0
    figures xml_process_test 'XmlProcesses.Eight*' || status=1
    figures reliability_test 'Processes.*' || status=1
    figures library_test 'LibraryMutexProcess.Eight*' || status=1
    return $status
}

faults() {
    what="each call and allocation, in turn"
    local status=0 preset=native-debug
    programs fault_test && figures fault_test '*' || status=1
    figure+=' on Linux'
    preset=sanitize
    programs fault_test && QUARN_FAULTS=all figures fault_test '*' || status=1
    figure+=' under the sanitizers'
    preset=windows-release
    scripts/xerces-for-windows >/dev/null && programs fault_test && QUARN_FAULTS=all figures fault_test '*' || status=1
    figure+=' on Windows'
    return $status
}

zones() {
    what="the native tests in 5 zones"
    local zone before=$passed failures=$failed
    build native-debug || return 1
    for zone in UTC Europe/Berlin Asia/Kolkata America/St_Johns Australia/Lord_Howe; do
        say "The zone $zone"
        TZ=$zone run_tests native-debug
    done
    figure="$((passed - before)) passed, $((failed - failures)) failed"
    [ "$failed" = "$failures" ] && [ "$passed" -gt "$before" ]
}

doubles() {
    what="${number[doubles]} random doubles"
    programs text_test && QUARN_DOUBLES=${number[doubles]} figures text_test FormatGenerated.RealsOfAnyBits
}

documents() {
    what="${number[documents]} generated documents"
    programs xml_private_test &&
        QUARN_DOCUMENTS=${number[documents]} figures xml_private_test XmlSecondOpinion.IsSharedOnGeneratedDocuments
}

fuzz() {
    what="${number[minutes]} minutes for each reader"
    build fuzz || return 1
    fuzz_all $((number[minutes] * 60))
    local name readers=0 findings=0 executions=0 text
    for name in $(fuzz_names); do
        readers=$((readers + 1))
        if fuzz_passed "$name"; then
            text=$(fuzz_figures "$name")
            executions=$((executions + ${text%% *}))
        else
            findings=$((findings + 1))
            text='a finding'
        fi
        echo "$name: $text"
    done
    figure="$readers readers, $executions executions, $findings findings"
    [ $readers -gt 0 ] && [ $findings = 0 ]
}

# ---- choosing and running them

forms=()
while [ $# -gt 0 ]; do
    case $1 in
    --*)
        [[ -v number[${1#--}] && ${2-} =~ ^[1-9][0-9]*$ ]] || usage
        number[${1#--}]=$2
        shift 2
        ;;
    *)
        [[ " ${all[*]} " == *" $1 "* ]] || usage
        forms+=("$1")
        shift
        ;;
    esac
done
[ ${#forms[@]} -gt 0 ] || forms=("${all[@]}")

install_packages "${packages_build[@]}" "${packages_test[@]}" "${packages_check[@]}" "${packages_windows[@]}" \
    "${packages_windows_test[@]}" || exit 1
rows=()
status=0
for form in "${forms[@]}"; do
    say "The form $form"
    begin=$SECONDS what='' figure='' result=passed
    "$form" || result=FAILED status=1
    rows+=("$(printf '%-10s %-34s %-9s %7s  %s' "$form" "$what" "$result" "$((SECONDS - begin)) s" "$figure")")
    echo "${rows[-1]}"
done
echo
printf '%-10s %-34s %-9s %7s  %s\n' form 'done' result time figure
printf '%s\n' "${rows[@]}"
exit $status
