#!/usr/bin/python3
"""Draws the pictures of docs/drawings: draw.py writes them, draw.py --check compares them with what it would write.

The bytes are those of the golden files in tests/data, or of an example in a document that is checked elsewhere; the
rooms and their arrows are the rules that scripts/check-architecture applies.
"""
import html
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DRAWINGS = ROOT / "docs/drawings"

STYLE = """<style>
text { font: 13px sans-serif; fill: #24292f } .hex { font: 13px monospace } .small { font-size: 12px }
.strong { font-weight: bold } .box { stroke: #57606a; stroke-width: 1 } .arrow { fill: none; stroke: #57606a; stroke-width: 1.4 }
.head { fill: #57606a } .room { fill: #f6f8fa; stroke: #57606a }
.f0 { fill: #cfe3fb } .f1 { fill: #d5efd0 } .f2 { fill: #fbe3c0 } .f3 { fill: #ecd9f7 } .f4 { fill: #f9d4d4 } .f5 { fill: #d3eeee }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3 } .box { stroke: #8b949e } .arrow { stroke: #8b949e } .head { fill: #8b949e }
.room { fill: #21262d; stroke: #8b949e }
.f0 { fill: #173f6b } .f1 { fill: #1d4a24 } .f2 { fill: #59400f } .f3 { fill: #45255e } .f4 { fill: #5c2323 } .f5 { fill: #144848 }
}
</style>"""
COLORS = 6
CELL, ROW, PER_ROW, MARGIN = 40, 30, 8, 12


def svg(width, height, title, body):
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" '
        'role="img">',
        f"<title>{html.escape(title)}</title>", STYLE, *body, "</svg>", ""])


def text(x, y, words, style="", anchor="start"):
    return f'<text x="{x}" y="{y}" text-anchor="{anchor}" class="{style}">{html.escape(words)}</text>'


def legend(y, entries):
    """Swatches with words, one below the other; what is drawn, and where it ends."""
    body = []
    for color, where, words in entries:
        body.append(f'<rect class="box f{color % COLORS}" x="{MARGIN}" y="{y}" width="14" height="14"/>')
        body.append(text(MARGIN + 22, y + 12, where, "small strong"))
        body.append(text(MARGIN + 76, y + 12, words, "small"))
        y += 21
    return body, y


def draw_bytes(title, data, fields):
    """A cell for each byte, eight in a row, a color for each field; `fields` are pairs of a count and words."""
    assert sum(count for count, _ in fields) == len(data), title
    body, entries, offset = [], [], 0
    for color, (count, words) in enumerate(fields):
        for at in range(offset, offset + count):
            x, y = MARGIN + at % PER_ROW * CELL, MARGIN + at // PER_ROW * ROW
            body.append(f'<rect class="box f{color % COLORS}" x="{x}" y="{y}" width="{CELL}" height="{ROW}"/>')
            body.append(text(x + CELL // 2, y + 20, f"{data[at]:02X}", "hex", "middle"))
        last = f"-{offset + count - 1}" if count > 1 else ""
        entries.append((color, f"{offset}{last}", words))
        offset += count
    below = MARGIN + (len(data) + PER_ROW - 1) // PER_ROW * ROW + 14
    drawn, end = legend(below, entries)
    return svg(2 * MARGIN + PER_ROW * CELL, end + 4, title, body + drawn)


def draw_bits(title, words):
    """Words of 32 bits, the highest bit left; a field is a name and its number of bits, from the highest down."""
    body, entries, color, y = [], [], 0, MARGIN
    for name, value, fields in words:
        body.append(text(MARGIN, y + 12, f"{name}: 0x{value:08X}", "small strong"))
        high = 32
        for count, words_of in fields:
            low = high - count
            x, width = MARGIN + (32 - high) * 10, count * 10
            body.append(f'<rect class="box f{color % COLORS}" x="{x}" y="{y + 20}" width="{width}" height="{ROW}"/>')
            part = value >> low & (1 << count) - 1
            if count > 2:
                body.append(text(x + width // 2, y + 40, str(part), "hex", "middle"))
            entries.append((color, f"{low}-{high - 1}", f"{words_of}, {name}: {part}"))
            color, high = color + 1, low
        assert high == 0, title
        y += 20 + ROW + 14
    drawn, end = legend(y, entries)
    return svg(2 * MARGIN + 320, end + 4, title, body + drawn)


def golden(name, begin=0, end=None):
    return (ROOT / "tests/data/stream" / name).read_bytes()[begin:end]


def example(document, label):
    """The bytes behind a label in an indented example of a document."""
    text_of = (ROOT / document).read_text(encoding="utf-8")
    found = re.search(rf"^    {re.escape(label)} {{2,}}((?:[0-9A-F]{{2}} ?)+)$", text_of, re.MULTILINE)
    return bytes.fromhex(found[1])


def first_record():
    """The record of the first program; the package test compares it with the program's."""
    text_of = (ROOT / "docs/first-program.md").read_text(encoding="utf-8")
    lines = re.findall(r"^    ((?:[0-9A-F]{2} )+) {2,}", text_of, re.MULTILINE)
    return bytes.fromhex("".join(lines))


def rooms():
    """{room: the rooms that it may include}, by the check's own rules."""
    printed = subprocess.run([ROOT / "scripts/check-architecture", "--rooms"], text=True, capture_output=True,
                             check=True).stdout
    return {line.split()[0]: set(line.split()[1:]) for line in printed.splitlines()}


NAMES = {"seam": ("the seam", "win32_api.h"), "formatter": ("formatter", "bounded printf"), "message": ("message", "the blocking one"),
         "platform": ("platform", "module services"), "platform/posix": ("platform/posix", "Win32 on Linux"),
         "platform/windows": ("platform/windows", "entry points"), "text": ("text", "strings, formatting"),
         "stream": ("stream", "records"), "time": ("time", "times, durations"), "units": ("units", "quantities"),
         "properties": ("properties", "the settings tree"), "registry": ("registry", "keys, values"),
         "properties/win32": ("properties/win32", "settings files"), "packing": ("packing", "typed records")}


def draw_rooms():
    """The rooms in floors, and of what each may include the nearest: the rest follows."""
    allowed = {room: below - {room} for room, below in rooms().items() if room not in ("export", "top")}
    allowed = {room: below & set(allowed) for room, below in allowed.items()}

    def reaches(room):
        return set().union(*(({below} | reaches(below)) for below in allowed[room]))

    nearest = {room: {b for b in below if not any(b in reaches(other) for other in below - {b})}
               for room, below in allowed.items()}
    floor = {}

    def floor_of(room):
        if room not in floor:
            floor[room] = max((floor_of(b) + 1 for b in allowed[room]), default=0)
        return floor[room]

    for room in allowed:
        floor_of(room)
    box, height, step, apart = 136, 46, 96, 150
    floors = [sorted(r for r in allowed if floor[r] == level) for level in range(max(floor.values()) + 1)]
    width = max(len(rooms_of) for rooms_of in floors) * apart
    place = {room: (index + 1) * width / (len(floors[0]) + 1) for index, room in enumerate(floors[0])}
    for rooms_of in floors[1:]:
        # Each over the middle of what it stands on, side by side where that is the same.
        wanted = {room: sum(place[below] for below in nearest[room]) / len(nearest[room]) for room in rooms_of}
        rooms_of.sort(key=lambda room: (wanted[room], room))
        left = [wanted[room] for room in rooms_of]
        for _ in range(100):
            for i in range(len(left) - 1):
                lack = apart - (left[i + 1] - left[i])
                if lack > 0:
                    left[i] -= lack / 2
                    left[i + 1] += lack / 2
            shift = max(apart / 2 - left[0], 0) - max(left[-1] - (width - apart / 2), 0)
            left = [x + shift for x in left]
        place.update(zip(rooms_of, left))
    top = len(floors) * step
    body = ['<marker id="head" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="7" markerHeight="7" orient="auto">'
            '<path class="head" d="M0 0 8 4 0 8z"/></marker>']
    for room in sorted(nearest):
        for below in sorted(nearest[room]):
            x1, y1 = place[room], top - floor[room] * step - step + height + MARGIN
            x2, y2 = place[below], top - floor[below] * step - step + MARGIN
            bend = (y2 - y1) / 2
            body.append(f'<path class="arrow" marker-end="url(#head)" d="M{x1:.0f} {y1:.0f}C{x1:.0f} {y1 + bend:.0f} '
                        f'{x2:.0f} {y2 - bend:.0f} {x2:.0f} {y2:.0f}"/>')
    for room in sorted(allowed):
        name, what = NAMES.get(room, (room, ""))
        x, y = place[room] - box / 2, top - floor[room] * step - step + MARGIN
        body.append(f'<rect class="room" x="{x:.0f}" y="{y}" width="{box}" height="{height}" rx="6"/>')
        body.append(text(f"{place[room]:.0f}", y + 20, name, "strong", "middle"))
        body.append(text(f"{place[room]:.0f}", y + 37, what, "small", "middle"))
    return svg(width, top - step + height + 2 * MARGIN, "The rooms of the library; arrows lead to what a room includes", body)


STRING = [(4, "marker"), (4, "length"), (4, "check word: the length's complement")]


def drawings():
    low_high = golden("time.bin", 8, 16)
    words = [int.from_bytes(low_high[i:i + 4], "little") for i in (0, 4)]
    yield "header-block", draw_bytes("A header block", golden("header_block.bin"), [(4, "id: 0x00010002"), (4, "version: 3")])
    yield "string", draw_bytes('The string "ab"', golden("strings.bin", 12, 26), STRING + [(2, 'the bytes: "ab"')])
    yield "string-old", draw_bytes('The string "ab" in the older format', golden("strings_old.bin", 8, 18),
                                   [(4, "length"), (4, "check word"), (2, 'the bytes: "ab"')])
    yield "string-list", draw_bytes("A list of three strings", golden("string_list.bin"), [
        (4, "how many strings: 3"), (12, "marker, length 1, check word"), (1, "the first string"), (12, "an empty string"),
        (12, "marker, length 8, check word"), (8, "the third string")])
    yield "compressed-string", draw_bytes("A string of 40 bytes, compressed to 4", golden("compressed_string.bin"), [
        (12, "marker, length 40, check word"), (4, "size before compression: 40"), (4, "size after compression: 4"),
        (4, "the compressor's bytes")])
    yield "time-bits", draw_bits("The time 32767-12-31 23:59:59.999999 in its two words", [
        ("high", words[0], [(16, "year"), (4, "month"), (5, "day"), (5, "hour"), (2, "reserved")]),
        ("low", words[1], [(6, "minute"), (6, "second"), (10, "millisecond"), (10, "microsecond")])])
    yield "time", draw_bytes("The time 0000-01-01 00:00", golden("time.bin", 0, 8), [(4, "high word"), (4, "low word")])
    yield "duration", draw_bytes("1 day and 1 second", example("docs/formats.md", "1 day and 1 second"),
                                 [(4, "whole minutes: 1440"), (4, "fraction: 35791394 of 2147483640")])
    yield "distance", draw_bytes("1.5 miles", golden("quantities.bin", 0, 8), [(4, "value: 1.5"), (4, "unit: 11, the mile")])
    yield "velocity", draw_bytes("-0.25 feet per time unit 3", golden("quantities.bin", 8, 20),
                                 [(4, "value: -0.25"), (4, "unit of length: 9, the foot"), (4, "time unit: 3")])
    yield "first-record", draw_bytes("The record of the first program", first_record(), [
        (8, "header block: id, version"), (4, "the number of the run, 1"), (12, "marker, length 12, check word"),
        (12, '"pump started"')])
    yield "rooms", draw_rooms()


def main():
    stale = []
    for name, drawing in drawings():
        file = DRAWINGS / f"{name}.svg"
        if sys.argv[1:] != ["--check"]:
            file.write_text(drawing, encoding="utf-8")
        elif not file.exists() or file.read_text(encoding="utf-8") != drawing:
            stale.append(file.relative_to(ROOT).as_posix())
    if stale:
        sys.exit(f"not what docs/site/draw.py draws: {' '.join(stale)}")


if __name__ == "__main__":
    main()
