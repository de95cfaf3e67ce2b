"""Fills the text growth.md with what was measured, and with what follows from it."""
import os

from plots import short
from results import OURS

MISSING = "(not measured)"
LOG_LINE = "26-03-07 | pump 3: the pressure is above its limit for 20 seconds\n"
KEY = "keys:1/values:{}".format
# Path, its smallest and its largest work.
EXPONENTS = [
    ("tree build", (KEY(1000), 1000), (KEY(100000), 100000)),
    ("tree look-up", (KEY(1000), 1000), (KEY(100000), 100000)),
    ("settings growth, load", ("values:10000", 10000), ("values:1000000", 1000000)),
    ("settings growth, save", ("values:10000", 10000), ("values:1000000", 1000000)),
    ("registry", ("list 1,000 values", 1000), ("list 10,000 values", 10000)),
    ("journal write", ("MB:1", 1), ("MB:100", 100)),
    ("journal read", ("MB:1", 1), ("MB:100", 100)),
]


def span(seconds):
    for unit, size in (("years", 365 * 86400), ("days", 86400), ("hours", 3600), ("minutes", 60)):
        if seconds >= 2 * size:
            return f"{seconds / size:.1f} {unit}"
    return f"{seconds:.1f} seconds"


def amount(size):
    for unit, step in (("TB", 1e12), ("GB", 1e9), ("MB", 1e6), ("kB", 1e3)):
        if size >= step:
            return f"{size / step:.3g} {unit}"
    return f"{size:.0f} bytes"


class Figures(dict):
    """A figure that could not be computed is shown as missing."""

    def __missing__(self, key):
        return MISSING


def exponents(results):
    lines = []
    for path, first, last in EXPONENTS:
        for peer in results.peers(path, first[0]):
            found = results.exponent(path, peer, first, last)
            if found is not None:
                who = "**QuarnUtil**" if peer == OURS else peer
                lines.append(f"| {path}, {first[1]:,} to {last[1]:,} | {who} | {found:.2f} |")
    return "\n".join(lines)


def time(results, path, case, peer=OURS):
    row = results.peers(path, case).get(peer)
    return row and row.median


def rate(results, path, case, peer=OURS):
    row = results.peers(path, case).get(peer)
    return row and row.counters.get("bytes_per_second")


def tree_figures(results, figures):
    build, look_up = time(results, "tree build", KEY(1000000)), time(results, "tree look-up", KEY(1000000))
    smaller = time(results, "tree look-up", KEY(100000))
    row = results.ours("tree build", KEY(1000000))
    if build:
        size = row.counters["bytes per value"]
        figures.update(million_build=short(build, "ns"), million_bytes=f"{size:.0f} bytes",
                       million_memory=amount(size * 1e6))
    if look_up:
        figures["million_look_up"] = short(look_up, "ns")
    if look_up and smaller:
        figures["million_factor"] = f"{look_up / smaller:.1f}"
    for name in ("load", "save"):
        row = results.ours(f"settings growth, {name}", "values:1000000")
        if row:
            figures[f"million_{name}"] = short(row.median, "ns")
            if "bytes in file" in row.counters:
                figures["million_file"] = amount(row.counters["bytes in file"])
                figures["largest"] = f"{256 * 2**20 / row.counters['bytes in file']:.1f}"


def journal_figures(results, figures):
    whole = 100e9
    for name in ("write", "read"):
        for size in (1, 100):
            found = rate(results, f"journal {name}", f"MB:{size}")
            if found:
                figures[f"journal_{name}_{size}"] = amount(found) + "/s"
                figures[f"journal_{name}_time"] = span(whole / found)
    row = results.ours("journal write", "MB:1")
    if row:
        figures["journal_record"] = f"{row.counters['bytes per record']:.0f}"
    for name, case in (("end_1m", "MB:1"), ("end_100g", "MB:100000")):
        found = time(results, "journal end", case)
        if found:
            figures[name] = short(found, "ns")


def log_figures(results, figures, disk):
    line, stdio = time(results, "log line", "with its date"), time(results, "log line", "with its date",
                                                                   "fprintf of the same")
    traffic = 1000 * len(LOG_LINE)
    figures.update(log_bytes=str(len(LOG_LINE)), log_day=amount(traffic * 86400),
                   log_year=amount(traffic * 86400 * 365), log_flushes=f"{traffic / 4096:.0f}")
    if line:
        figures.update(log_line=short(line, "ns"), log_share=f"{line * 1000 / 1e9:.2%}")
    if stdio:
        figures["log_fprintf"] = short(stdio, "ns")
    if disk:
        figures["disk_share"] = f"{traffic / disk:.2%}"


def section(results):
    figures = Figures(exponents=exponents(results))
    disk = rate(results, "journal write", "MB:100", "limit: the disk, flushed")
    if disk:
        figures.update(disk_rate=amount(disk) + "/s", disk_time=span(100e9 / disk))
    tree_figures(results, figures)
    journal_figures(results, figures)
    log_figures(results, figures, disk)
    with open(os.path.join(os.path.dirname(__file__), "growth.md"), encoding="utf-8") as text:
        return text.read().format_map(figures)
