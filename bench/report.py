#!/usr/bin/env python3
"""Writes docs/performance.md and the plots in docs/plots/ from the benchmarks' results.

    bench/report.py RESULTS [DOCS]      the folder of the JSON files; docs by default
"""
import os
import subprocess
import sys

import growth
import plots
import targets
import wine
from plots import short
from results import OURS, Results, is_limit

INTRODUCTION = """# Performance

Every path is measured with Google Benchmark beside its peers, in one program and one run, with the repetitions in
random order, after the results of all were compared. The figures are medians of {repetitions} repetitions on {machine}; the
spread is the coefficient of variation. A ratio is the other's time over ours: above 1, the library is faster. Rows named *limit* are hand-written code that does only the unavoidable work, or what the machine takes.

`bench/run.sh` installs the peers, measures everything again and writes this page and its plots. A peer that is not
there is left out, and a target that needs it counts as not measured.

Versions: {versions}.
"""

PACKAGES = ("g++", "libc6", "libbenchmark-dev", "zlib1g-dev", "libdeflate-dev", "libisal-dev", "libfmt-dev",
            "libabsl-dev", "libcereal-dev", "libboost-dev", "libpoco-dev", "qtbase5-dev", "libxerces-c-dev", "libpugixml-dev",
            "libsqlite3-dev")
MARKS = {True: "met", False: "**not met**", None: "not measured"}


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as info:
        models = [line.split(":", 1)[1].strip() for line in info if line.startswith("model name")]
    return f"{os.cpu_count()} cores of an {models[0] if models else 'unknown processor'}"


def versions():
    found = []
    for package in PACKAGES:
        query = subprocess.run(["dpkg-query", "-W", "-f=${Version}", package], capture_output=True, text=True,
                               check=False)
        if query.returncode == 0 and query.stdout:
            found.append(f"{package} {query.stdout}")
    return ", ".join(found)


def cell(text):
    return text.replace("|", "\\|") or "-"


def needed(verdict):
    return f"{'≥' if verdict.at_least and not verdict.strict else '>' if verdict.at_least else '<'} {verdict.needed:.2f}"


def summary(results):
    """One row for each target, with its tightest case; then the reasons for what is not met."""
    lines, reasons, counts = [], [], {True: 0, False: 0, None: 0}
    for target in targets.TARGETS:
        verdicts = target.check(results)
        measured = [verdict for verdict in verdicts if verdict.met is not None]
        if len(measured) < len(verdicts):
            state = False if any(not verdict.met for verdict in measured) else None
        else:
            state = all(verdict.met for verdict in verdicts)
        counts[state] += 1
        tightest = min(measured, key=lambda verdict: verdict.margin, default=None)
        lacking = sorted({verdict.beside for verdict in verdicts if verdict.met is None})
        if tightest is None:
            beside, found, bound = "without " + ", ".join(lacking), "-", needed(verdicts[0])
        else:
            beside = f"{tightest.beside}, {tightest.case}" if tightest.case else tightest.beside
            found, bound = f"{tightest.found:.2f}", needed(tightest)
        met = sum(verdict.met is True for verdict in verdicts)
        cases = f" ({met} of {len(verdicts)})" if len(verdicts) > 1 else ""
        lines.append(f"| {target.what} | {target.rule} | {cell(beside)} | {found} | {bound} "
                     f"| {MARKS[state]}{cases} |")
        if state is False:
            reasons.append(f"- {target.what}, {target.rule}: {target.reason or 'not yet looked into'}.")
    print(f"## Summary\n\n{counts[True]} of {len(targets.TARGETS)} targets are met, {counts[False]} are not, "
          f"{counts[None]} could not be measured. Of several cases the tightest is shown.\n")
    print("| path | target | beside | ratio | needed | |\n|---|---|---|--:|--:|---|")
    print("\n".join(lines) + "\n")
    if reasons:
        print("Not met:\n\n" + "\n".join(reasons) + "\n")


def marks(results, path):
    """(case, peer) -> what is needed there and whether it is met."""
    found = {}
    for target in targets.TARGETS:
        if target.path == path:
            for verdict in target.check(results):
                if verdict.met is not None:
                    found.setdefault((verdict.case, verdict.beside), []).append(
                        f"{needed(verdict)} {MARKS[verdict.met]}")
    return {place: ", ".join(texts) for place, texts in found.items()}


def table(results, path, plot):
    print(f"## {path[0].upper()}{path[1:]}\n")
    if plot:
        print(f"![{plot[1]}](plots/{plot[0]})\n")
    cases, target = results.paths[path], marks(results, path)
    counters = "bytes per value" if any("bytes per value" in row.counters for peers in cases.values()
                                        for row in peers.values()) else None
    print(f"| case | who | median | ratio | target | spread |{f' {counters} |' if counters else ''}")
    print(f"|---|---|--:|--:|---|--:|{'--:|' if counters else ''}")
    for case, peers in cases.items():
        ours = peers.get(OURS)
        for peer, row in sorted(peers.items(), key=lambda item: item[1].median):
            who = "**QuarnUtil**" if peer == OURS else f"*{peer}*" if is_limit(path, peer) else peer
            ratio = f"{row.median / ours.median:.2f}" if ours else "-"
            extra = f" {row.counters.get(counters, 0):.0f} |" if counters else ""
            print(f"| {cell(case)} | {cell(who)} | {short(row.median, 'ns')} | {ratio} "
                  f"| {target.get((case, peer), '')} | {row.spread:.0%} |{extra}")
    print()


def main():
    results = Results(sys.argv[1])
    docs = sys.argv[2] if len(sys.argv) > 2 else os.path.join(os.path.dirname(__file__), "..", "docs")
    drawn = plots.write(results, os.path.join(docs, "plots"))
    with open(os.path.join(docs, "performance.md"), "w", encoding="utf-8") as page:
        sys.stdout = page
        print(INTRODUCTION.format(repetitions=results.repetitions, machine=machine(), versions=versions()))
        summary(results)
        for path in results.paths:
            table(results, path, drawn.get(path))
        print(growth.section(results))
        print(wine.section(short))
        sys.stdout = sys.__stdout__
    for error in results.errors:
        print(f"not measured: {error}", file=sys.stderr)
    return 1 if results.errors else 0


sys.exit(main())
