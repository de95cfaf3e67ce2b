"""Plots of the results as SVG, readable on light and dark pages."""
import html
import math
import os

from results import OURS, is_limit

STYLE = """<style>
text { font: 12px sans-serif; fill: #24292f } .title { font-weight: bold; font-size: 14px }
.page { fill: #ffffff } .grid { stroke: #d0d7de; stroke-width: 1 }
.line { fill: none; stroke-width: 1.6 } .ours { stroke-width: 3.2 } .limit { stroke-dasharray: 5 4 }
.s0 { stroke: #d1242f } .s1 { stroke: #0969da } .s2 { stroke: #1a7f37 } .s3 { stroke: #8250df }
.s4 { stroke: #9a6700 } .s5 { stroke: #1b7c83 } .s6 { stroke: #bf3989 } .s7 { stroke: #57606a }
.b0 { fill: #d1242f } .b1 { fill: #0969da } .b2 { fill: #1a7f37 } .b3 { fill: #8250df }
.b4 { fill: #9a6700 } .b5 { fill: #1b7c83 } .b6 { fill: #bf3989 } .b7 { fill: #57606a }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 } .page { fill: #0d1117 } .grid { stroke: #30363d }
.s0 { stroke: #ff7b72 } .s1 { stroke: #58a6ff } .s2 { stroke: #56d364 } .s3 { stroke: #bc8cff }
.s4 { stroke: #e3b341 } .s5 { stroke: #39c5cf } .s6 { stroke: #ff9bce } .s7 { stroke: #8b949e }
.b0 { fill: #ff7b72 } .b1 { fill: #58a6ff } .b2 { fill: #56d364 } .b3 { fill: #bc8cff }
.b4 { fill: #e3b341 } .b5 { fill: #39c5cf } .b6 { fill: #ff9bce } .b7 { fill: #8b949e }
}
</style>"""


def shown(peer):
    return "QuarnUtil" if peer == OURS else peer


def colours(peers):
    """Ours has the first colour, the others keep theirs in the order of their names."""
    others = sorted(peer for peer in peers if peer != OURS)
    return {OURS: 0} | {peer: 1 + number % 7 for number, peer in enumerate(others)}


def short(value, unit):
    """With the prefix that fits: nanoseconds, or a plain number."""
    if unit == "ns":
        for name, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
            if value >= size:
                return f"{value / size:.3g} {name}"
        return f"{value:.3g} ns"
    if unit == "B":
        for name, size in (("MiB", 1 << 20), ("KiB", 1 << 10)):
            if value >= size:
                return f"{value / size:.3g} {name}"
        return f"{value:.3g} B"
    return f"{value:,.3g}{unit}" if value < 1000 else f"{value:,.0f}{unit}"


def text(x, y, content, anchor="start", kind=""):
    return f'<text x="{x:.0f}" y="{y:.0f}" text-anchor="{anchor}" class="{kind}">{html.escape(content)}</text>'


def document(width, height, body):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
            f'height="{height}">\n{STYLE}\n<rect class="page" width="{width}" height="{height}"/>\n'
            + "\n".join(body) + "\n</svg>\n")


def decades(low, high):
    return [10.0 ** e for e in range(math.floor(math.log10(low)), math.ceil(math.log10(high)) + 1)]


def curves(left, top, width, height, title, series, xs, x_unit, y_unit):
    """Lines over logarithmic axes. `series` is peer -> [(x, y)]."""
    points = [point for row in series.values() for point in row]
    ticks = decades(min(y for _, y in points), max(y for _, y in points))
    x_low, x_high = math.log(min(xs)), math.log(max(xs))
    y_low, y_high = math.log(ticks[0]), math.log(ticks[-1])

    def place(x, y):
        return (left + width * (math.log(x) - x_low) / (x_high - x_low),
                top + height * (1 - (math.log(y) - y_low) / (y_high - y_low)))

    body = [text(left, top - 14, title, kind="title")]
    for tick in ticks:
        y = place(xs[0], tick)[1]
        body.append(f'<line class="grid" x1="{left}" x2="{left + width}" y1="{y:.1f}" y2="{y:.1f}"/>')
        body.append(text(left - 6, y + 4, short(tick, y_unit), "end"))
    for x in xs:
        body.append(text(place(x, ticks[0])[0], top + height + 18, short(x, x_unit), "middle"))
    colour = colours(series)
    for peer, row in sorted(series.items(), key=lambda item: item[0] == OURS):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in (place(*point) for point in sorted(row)))
        kind = "ours" if peer == OURS else "limit" if is_limit("", peer) else ""
        body.append(f'<polyline class="line s{colour[peer]} {kind}" points="{path}"/>')
    return body


def legend(left, top, series):
    """Ordered as the curves are at their right end, the highest on top."""
    body, colour = [], colours(series)
    for number, (peer, _) in enumerate(sorted(series.items(), key=lambda item: -max(item[1])[1])):
        y = top + 20 * number
        kind = "ours" if peer == OURS else "limit" if is_limit("", peer) else ""
        body.append(f'<line class="line s{colour[peer]} {kind}" x1="{left}" x2="{left + 24}" y1="{y}" y2="{y}"/>')
        body.append(text(left + 30, y + 4, shown(peer)))
    return body


def bars(results, path, cases, title):
    """Groups of horizontal bars, a group for each case, each on a scale of its own."""
    body, y = [text(16, 26, title, kind="title")], 56
    colour = colours({peer for case in cases for peer in results.peers(path, case)})
    for case in cases:
        rows = results.peers(path, case)
        if not rows:
            continue
        body.append(text(16, y, case, kind="title"))
        y += 8
        longest = max(row.median for row in rows.values())
        for peer, row in sorted(rows.items(), key=lambda item: item[1].median):
            size = max(1.0, 420 * row.median / longest)
            body.append(text(206, y + 12, shown(peer), "end"))
            body.append(f'<rect class="b{colour[peer]}" x="212" y="{y + 2}" width="{size:.1f}" height="13"/>')
            body.append(text(218 + size, y + 13, short(row.median, "ns")))
            y += 18
        y += 24
    return document(720, y, body)


def throughput(results):
    series, sizes = {}, []
    for case, rows in results.paths.get("crc32", {}).items():
        if int(case) == 0:
            continue
        sizes.append(int(case))
        for peer, row in rows.items():
            series.setdefault(peer, []).append((int(case), int(case) / row.median))
    if not sizes:
        return None
    body = curves(80, 50, 420, 300, "CRC-32: throughput over size", series, sorted(sizes), "B", " GB/s")
    return document(740, 390, body + legend(530, 60, series))


def tree(results):
    body, left, last = [], 80, {}
    for path, title in (("tree build", "Building one key of so many values"),
                        ("tree look-up", "One look-up in it")):
        series, counts = {}, set()
        for case, rows in results.paths.get(path, {}).items():
            keys, values = (int(part.split(":")[1]) for part in case.split("/"))
            if keys != 1:
                continue
            counts.add(values)
            for peer, row in rows.items():
                series.setdefault(peer, []).append((values, row.median))
        if len(counts) < 2:
            return None
        body += curves(left, 50, 300, 300, title, series, sorted(counts), "", "ns")
        left, last = left + 400, series
    return document(1020, 390, body + legend(810, 60, last))


def write(results, folder):
    """Writes what there are results for; returns the names and captions of the files."""
    os.makedirs(folder, exist_ok=True)
    made = {
        "crc.svg": ("crc32", "CRC-32: throughput over size", throughput(results)),
        "tree.svg": ("tree build", "Growth of the tree", tree(results)),
        "records.svg": ("record", "Records", bars(results, "record", list(results.paths.get("record", {})),
                                                  "1,000 records of 231 bytes")),
        "formats.svg": ("format", "Formats", bars(results, "format", list(results.paths.get("format", {})),
                                                  "One text by a format")),
    }
    written = {}
    for name, (path, caption, content) in made.items():
        if content is not None and path in results.paths:
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(content)
            written[path] = (name, caption)
    return written
