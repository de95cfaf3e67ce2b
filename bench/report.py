#!/usr/bin/env python3
"""Writes the performance page from Google Benchmark's JSON files in the folder given on the command line.

A benchmark is named path/peer/case; the peer "quarn" is ours. A ratio is a peer's median over ours, so above 1 the
library is faster; rows named "limit" are what the machine allows, not libraries.
"""
import collections
import glob
import json
import os
import statistics
import sys

INTRODUCTION = """# Performance

Measured with Google Benchmark, every path beside its peers in one program and one run, repetitions in random order.
The figures are medians of {repetitions} repetitions on {machine};
the spread is the coefficient of variation. A ratio is the other's time over ours: above 1, the library is faster.
Rows named *limit* are hand-written code that does only the unavoidable work. `bench/run.sh` measures everything again
and writes this page; the peers need libdeflate-dev, libabsl-dev, libfmt-dev and qtbase5-dev, and are left out
without them.

Versions: {versions}.
"""


def human(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.3g} ns"


def machine():
    model = "this processor"
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        for line in info:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    return f"{os.cpu_count()} cores of an {model}"


def versions():
    packages = ["g++", "zlib1g-dev", "libdeflate-dev", "libxerces-c-dev", "libbenchmark-dev", "libsqlite3-dev",
                "qtbase5-dev", "libabsl-dev", "libfmt-dev"]
    found = []
    for package in packages:
        version = os.popen(f"dpkg-query -W -f='${{Version}}' {package} 2>/dev/null").read().strip()
        if version:
            found.append(f"{package} {version}")
    return ", ".join(found)


def main():
    times = collections.defaultdict(list)
    order = {}
    for number, file in enumerate(sorted(glob.glob(os.path.join(sys.argv[1], "*.json")))):
        with open(file, encoding="utf-8") as text:
            for run in json.load(text)["benchmarks"]:
                if run.get("run_type") != "iteration" or run.get("error_occurred"):
                    continue
                name = run["run_name"].removesuffix("/real_time")
                scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
                which = "real_time" if run["run_name"].endswith("/real_time") else "cpu_time"
                times[name].append(run[which] * scale)
                order.setdefault(name, (number, run["family_index"], run["per_family_instance_index"]))
    paths = collections.defaultdict(lambda: collections.defaultdict(dict))
    for name in sorted(times, key=order.get):
        path, peer, case = (name.split("/", 2) + [""])[:3]
        paths[path][case][peer] = times[name]
    repetitions = max(len(values) for values in times.values())
    print(INTRODUCTION.format(repetitions=repetitions, machine=machine(), versions=versions()))
    for path, cases in paths.items():
        print(f"## {path[0].upper()}{path[1:]}\n")
        print("| case | who | median | ratio | spread |\n|---|---|--:|--:|--:|")
        for case, peers in cases.items():
            ours = next((statistics.median(v) for p, v in peers.items() if p.startswith("quarn")), None)
            for peer, values in sorted(peers.items(), key=lambda item: statistics.median(item[1])):
                median = statistics.median(values)
                mean = statistics.fmean(values)
                spread = statistics.pstdev(values) / mean if mean else 0
                label = f"**{peer.replace('quarn', 'QuarnUtil')}**" if peer.startswith("quarn") else peer
                ratio = f"{median / ours:.2f}" if ours else "-"
                shown = case.replace("|", "\\|") or "-"
                print(f"| {shown} | {label} | {human(median)} | {ratio} | {spread:.0%} |")
        print()


main()
