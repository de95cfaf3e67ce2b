#!/usr/bin/env bash
# Builds the benchmarks, runs them all with repetitions, and writes docs/performance.md from their output.
#   bench/run.sh [REPETITIONS]        (9 if left out)
set -euo pipefail
cd "$(dirname "$0")/.."
repetitions=${1:-9}
cmake --preset native-release > /dev/null
mapfile -t programs < <(sed -n 's/^quarn_add_benchmark(\([a-z0-9_]*\).*/\1/p' bench/CMakeLists.txt)
cmake --build --preset native-release --target "${programs[@]}"
results=build/native-release/bench-results
mkdir -p "$results"
for program in "${programs[@]}"; do
  echo "running $program"
  (cd "$results" && ../bin/"$program" --benchmark_repetitions="$repetitions" \
    --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 \
    --benchmark_out="$program.json" --benchmark_out_format=json > "$program.log" 2>&1)
done
python3 bench/report.py "$results" > docs/performance.md
echo "wrote docs/performance.md"
