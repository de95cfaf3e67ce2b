#!/bin/bash
# Builds the library and runs its example, a small station program, twice: the second run continues the first.
#
#   ./demo.sh             on Linux
#   ./demo.sh --windows   the same program cross-built for Windows and run under Wine
#
# For Debian 12. Packages that are missing are installed with apt-get (as root or through sudo). The station's
# settings and journal stay in build/demo/data (build/demo-windows/data), so that a later run goes on from there.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root" || exit 1
. scripts/steps.sh
. scripts/packages.sh

preset=native-release
folder=$root/build/demo
run=()
program=$folder/bin/station
packages=("${packages_build[@]}")
case "${1-}" in
'') ;;
--windows)
    preset=windows-release
    folder=$root/build/demo-windows
    run=("$root/scripts/wine-run" "$folder/wine")
    program=$folder/bin/station.exe
    packages+=("${packages_windows[@]}")
    ;;
*)
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0"
    exit 2
    ;;
esac

install_packages "${packages[@]}" || exit 1
[ "$preset" = native-release ] || scripts/xerces-for-windows >/dev/null || exit 1

say "Building the library and the station"
quietly demo-configure cmake --preset "$preset" -B "$folder" \
    -DQUARN_BUILD_TESTS=OFF -DQUARN_BUILD_BENCHMARKS=OFF &&
    quietly demo-build cmake --build "$folder" --parallel "$jobs" || exit 1
if [ ! -x "$program" ]; then
    echo "The build made no station program." >&2
    exit 1
fi
if [ ${#run[@]} -gt 0 ]; then
    quietly wine "${run[@]}" cmd /c exit || exit 1
fi

station() {
    say "station $*"
    "${run[@]}" "$program" "$@" || exit 1
    echo
}

mkdir -p "$folder/data"
cd "$folder/data" || exit 1
station --settings station.xml
station --settings station.xml
station --show station.xml
