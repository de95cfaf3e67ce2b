#!/usr/bin/env python3
"""What the benchmarks measured under Wine, kept in bench/wine/, and the section of docs/performance.md made of it.

    bench/wine.py RESULTS       keeps the results in this folder of JSON files, without what nobody reads; the load
                                is that of the last 15 minutes
"""
import glob
import json
import os
import subprocess
import sys

from results import OURS, Results, is_limit

KEPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "wine")
FIELDS = ("run_name", "run_type", "family_index", "per_family_instance_index", "cpu_time", "time_unit")

TEXT = """## The same programs on Windows, under Wine

Measured with `bench/wine.sh` on {machine} with {versions}: the programs that use no calls of one system, built with
MinGW-w64, beside the peers that it and the distribution bring. The numbers are the other's time over ours, medians of
{repetitions} repetitions of 0.1 s or more of the processor's time, which Wine tells to 10 ms; the load of the machine was {load}.

What they say is limited. Wine is no Windows: its C library, its memory and its files are its own, so `snprintf`,
`strftime`, allocations and files cost something else there, and so do the peers made of them. They show how the
same code stands beside the same peers there; they are no targets, and no measurement of Windows.

| path | case | ours | the others, their time over ours |
|---|---|--:|---|
{rows}
"""


def keep(folder):
    runs, order = [], 0
    for order, file in enumerate(sorted(glob.glob(os.path.join(folder, "*.json")))):
        with open(file, encoding="utf-8") as text:
            for run in json.load(text)["benchmarks"]:
                if run.get("error_occurred"):
                    raise SystemExit(f"{run['run_name']}: {run['error_message']}")
                if run["run_type"] == "iteration":
                    kept = {field: run[field] for field in FIELDS}
                    kept["family_index"] += 1000 * order
                    kept["cpu_time"] = round(kept["cpu_time"], 2)
                    runs.append(kept)
    wine = subprocess.run(["wine", "--version"], capture_output=True, text=True, check=True).stdout.strip()
    compiler = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-dumpfullversion"], capture_output=True, text=True,
                              check=True).stdout.strip()
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        model = next(line.split(":", 1)[1].strip() for line in info if line.startswith("model name"))
    os.makedirs(KEPT, exist_ok=True)
    with open(os.path.join(KEPT, "results.json"), "w", encoding="utf-8") as text:
        head = {"versions": f"{wine} and MinGW-w64's g++ {compiler}",
                "machine": f"{os.cpu_count()} cores of an {model}",
                "load": round(os.getloadavg()[2], 1)}
        text.write('{\n"context": ' + json.dumps(head) + ',\n"benchmarks": [\n')
        text.write(",\n".join(json.dumps(run) for run in runs))
        text.write("\n]\n}\n")


def section(short):
    """The section, empty where nothing is kept."""
    file = os.path.join(KEPT, "results.json")
    if not os.path.exists(file):
        return ""
    with open(file, encoding="utf-8") as text:
        context = json.load(text)["context"]
    results = Results(KEPT)
    rows = []
    for path, cases in results.paths.items():
        for case, peers in cases.items():
            ours = peers.get(OURS)
            if ours is None or len(peers) < 2:
                continue
            others = sorted((row.median, peer) for peer, row in peers.items() if peer != OURS)
            shown = ", ".join(f"{f'*{peer}*' if is_limit(path, peer) else peer} {median / ours.median:.2f}"
                              for median, peer in others)
            rows.append(f"| {path} | {case or '-'} | {short(ours.median, 'ns')} | {shown} |")
    return TEXT.format(repetitions=results.repetitions, rows="\n".join(rows), **context)


if __name__ == "__main__":
    keep(sys.argv[1])
