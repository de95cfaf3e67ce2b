#!/bin/bash
# Builds and tests the library on Linux and, cross-built and run under Wine, on Windows.
#
#   ./test.sh            both systems
#   ./test.sh --native   Linux alone
#
# For Debian 12. Packages that are missing are installed with apt-get (as root or through sudo); builds stay in
# build/, the Windows build of Xerces-C in ~/.cache/quarnutil. The last line is the total of both systems.
set -uo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root" || exit 1
. scripts/steps.sh
. scripts/packages.sh

windows=yes
case "${1-}" in
'') ;;
--native) windows=no ;;
*)
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0"
    exit 2
    ;;
esac

packages=("${packages_build[@]}" "${packages_test[@]}")
[ $windows = no ] || packages+=("${packages_windows[@]}" "${packages_windows_test[@]}")
install_packages "${packages[@]}" || exit 1

native() { build native-debug && run_tests native-debug; }

windows() {
    scripts/xerces-for-windows >/dev/null && build windows-release || return 1
    # Wine's first start takes longer than a test may.
    say "Starting Wine"
    quietly wine scripts/wine-run "$root/build/windows-release/wine" cmd /c exit || return 1
    run_tests windows-release
}

step "the native build" native
[ $windows = no ] || step "the Windows build" windows
finish
