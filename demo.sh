#!/bin/bash
# Builds the library and runs its example, a small station program: a first run that the registry seeds, a second
# one that continues it and names its units in German, and one that finds its settings spoiled and restores them from
# their backup; then shows what the runs have left.
#
#   ./demo.sh             on Linux
#   ./demo.sh --windows   the same program cross-built for Windows and run under Wine
#
# For Debian 12. Packages that are missing are installed with apt-get (as root or through sudo). The station's
# settings, journal and registry stay in build/demo/data (in the Wine prefix, build/demo-windows/wine), so that a
# later run goes on from there.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root" || exit 1
. scripts/steps.sh
. scripts/packages.sh

preset=native-release
folder=$root/build/demo
data=$folder/data
run=()
program=$folder/bin/station
packages=("${packages_build[@]}")
case "${1-}" in
'') ;;
--windows)
    preset=windows-release
    folder=$root/build/demo-windows
    data=$folder/wine/drive_c/users/Public/Documents
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

# The station's machine is the demo's own; under Wine it is the prefix.
export QUARNUTIL_MACHINE_DIR=$data
mkdir -p "$data"
cd "$data" || exit 1
station --commission "Pump house" 15
station
station --language DEU
say "Spoiling Station.xml: a hand that cuts it off behind 300 bytes"
truncate -s 300 Station.xml || exit 1
echo
station
station --show Station.xml
station --dump
say "Station.log"
cat Station.log
