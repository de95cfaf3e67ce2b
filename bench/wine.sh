#!/bin/bash
# Builds the benchmarks for Windows, runs them under Wine and keeps what they measured in bench/wine/, from which
# bench/report.py makes a section of docs/performance.md.
#
#   bench/wine.sh [REPETITIONS]     5 repetitions by default, in random order
#
# The programs without calls of one system, and of their peers those that MinGW-w64 and the distribution bring.
# Google Benchmark is built from the distribution's source package of the native version.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
. scripts/steps.sh
. scripts/packages.sh
. scripts/source_package.sh

repetitions=${1:-5}
install_packages "${packages_build[@]}" "${packages_windows[@]}" "${packages_windows_test[@]}" libbenchmark-dev

build=$root/build/windows-bench
library=$build/benchmark
build_library() {
    local work=$build/work version
    version=$(dpkg-query -W -f '${source:Version}' libbenchmark-dev)
    rm -rf "$work"
    mkdir -p "$work"
    fetch_source benchmark "$version" "$work" &&
        cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$root/cmake/windows-mingw.cmake" \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$work/prefix" -DBUILD_SHARED_LIBS=OFF \
            -DGIT_VERSION="${version%-*}" -DBENCHMARK_ENABLE_TESTING=OFF -DBENCHMARK_ENABLE_WERROR=OFF \
            -DBENCHMARK_INSTALL_DOCS=OFF &&
        cmake --build "$work/build" && cmake --install "$work/build" &&
        mv "$work/prefix" "$library" && rm -rf "$work"
}
say "Building Google Benchmark for Windows"
[ -d "$library" ] || quietly wine-bench-library build_library

say "Building the benchmarks for Windows"
quietly wine-bench-configure cmake --preset windows-release -B "$build/programs" -DQUARN_BUILD_TESTS=OFF \
    -DQUARN_BUILD_EXAMPLES=OFF -DQUARN_BUILD_FUZZERS=OFF -DQUARN_BUILD_BENCHMARKS=ON \
    -Dbenchmark_DIR="$library/lib/cmake/benchmark"
quietly wine-bench-build cmake --build "$build/programs"

results=$build/results
mkdir -p "$results"
rm -f "$results"/*.json "$results"/*.log
for program in "$build"/programs/bin/*_bench.exe; do
    name=$(basename "$program" .exe)
    say "Running $name"
    (cd "$results" && "$root/scripts/wine-run" "$build/wine" "$program" --benchmark_repetitions="$repetitions" \
        --benchmark_enable_random_interleaving=true --benchmark_min_time=0.1 \
        --benchmark_out="$name.json" --benchmark_out_format=json </dev/null >"$name.log" 2>&1) ||
        { tail -n 20 "$results/$name.log" >&2; exit 1; }
done
scripts/wine-run "$build/wine" --stop
bench/wine.py "$results"
say "Wrote bench/wine/"
