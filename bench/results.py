"""What the benchmark programs have measured, read from Google Benchmark's JSON files.

A benchmark is named path/peer/case; the peer "quarn" is ours. Rows named "limit" are what the machine allows; they
are no peers.
"""
import collections
import glob
import json
import math
import os
import statistics

OURS = "quarn"
UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


class Row:
    """The repetitions of one peer in one case."""

    def __init__(self):
        self.times = []  # nanoseconds
        self.counters = {}

    @property
    def median(self):
        return statistics.median(self.times)

    @property
    def spread(self):
        mean = statistics.fmean(self.times)
        return statistics.pstdev(self.times) / mean if mean else 0


class Results:
    def __init__(self, folder):
        self.paths = collections.defaultdict(lambda: collections.defaultdict(dict))
        self.errors = []
        rows = collections.defaultdict(Row)
        order = {}
        for number, file in enumerate(sorted(glob.glob(os.path.join(folder, "*.json")))):
            with open(file, encoding="utf-8") as text:
                for run in json.load(text)["benchmarks"]:
                    if run.get("run_type") != "iteration":
                        continue
                    name = run["run_name"]
                    if run.get("error_occurred"):
                        self.errors.append(f"{name}: {run['error_message']}")
                        continue
                    row = rows[name]
                    which = "real_time" if name.endswith("/real_time") else "cpu_time"
                    row.times.append(run[which] * UNITS[run["time_unit"]])
                    for counter in ("bytes_per_second", "bytes per value", "bytes per record",
                                    "bytes in file"):
                        if counter in run:
                            row.counters[counter] = run[counter]
                    order.setdefault(name, (number, run["family_index"], run["per_family_instance_index"]))
        for name in sorted(rows, key=order.get):
            # What the benchmark says of how it is run is no part of its case.
            parts = [part for part in name.split("/")
                     if part != "real_time" and not part.startswith(("iterations:", "repeats:"))]
            path, peer, case = parts[0], parts[1], "/".join(parts[2:])
            self.paths[path][case][peer] = rows[name]

    @property
    def repetitions(self):
        return max((len(row.times) for cases in self.paths.values() for peers in cases.values()
                    for row in peers.values()), default=0)

    def peers(self, path, case):
        return self.paths.get(path, {}).get(case, {})

    def ours(self, path, case):
        return self.peers(path, case).get(OURS)

    def exponent(self, path, peer, first, last):
        """e of cost ~ n^e between two cases of so many values, or None. `first` and `last` are (case, n)."""
        rows = [self.peers(path, case).get(peer) for case, _ in (first, last)]
        if None in rows:
            return None
        return math.log(rows[1].median / rows[0].median) / math.log(last[1] / first[1])


def is_limit(path, peer):
    # The calendar's computations alone.
    return peer.startswith("limit") or (peer == "std::chrono" and path != "time as text")
