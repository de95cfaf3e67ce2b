#!/bin/bash
# Builds the benchmarks, runs them all and writes docs/performance.md and docs/plots/ from what they measured.
#
#   bench/run.sh [REPETITIONS]      5 repetitions by default, in random order
#
# Packages of peers that are missing are installed with apt-get (as root or through sudo). The results stay in
# build/native-release/bench-results. For figures to rely on, nothing else may run on the machine meanwhile.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
. scripts/steps.sh
. scripts/packages.sh

repetitions=${1:-5}
install_packages "${packages_build[@]}" "${packages_test[@]}" "${packages_bench[@]}"

say "Building native-release"
mapfile -t programs < <(sed -n 's/^quarn_add_benchmark(\([a-z0-9_]*\).*/\1/p' bench/CMakeLists.txt)
quietly bench-configure cmake --preset native-release
quietly bench-build cmake --build --preset native-release --target "${programs[@]}"

results=build/native-release/bench-results
mkdir -p "$results"
rm -f "$results"/*.json "$results"/*.log
for program in "${programs[@]}"; do
    say "Running $program"
    (cd "$results" && ../bin/"$program" --benchmark_repetitions="$repetitions" \
        --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 \
        --benchmark_out="$program.json" --benchmark_out_format=json >"$program.log" 2>&1) ||
        { tail -n 20 "$results/$program.log" >&2; exit 1; }
done
bench/report.py "$results"
say "Wrote docs/performance.md and docs/plots"
