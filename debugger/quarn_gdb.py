"""Views of QuarnUtil's objects for gdb: strings, times and durations, settings as trees, quantities, header blocks and
streams. docs/debugging.md says how gdb finds this file.

Objects are believed as far as they can be true: sizes are limited, and what a pointer leads to is tried before it is
shown. What was never made, or is damaged, shows a note in angle brackets.
"""
import functools
import locale
import zlib

import gdb
import gdb.printing

LONGEST_TEXT = 200
MOST_BYTES = 32
MOST_ITEMS = 10_000_000
MOST_LEVELS = 1000
POINTER_SIZE = 8


class Damaged(Exception):
    """What an object holds cannot be."""


def noted(view):
    """A view in which a note stands for what cannot be read, or cannot be."""
    @functools.wraps(view)
    def guarded(*arguments):
        try:
            return view(*arguments)
        except Damaged as damage:
            return f"<{damage}>"
        except (gdb.error, RuntimeError, ValueError, OverflowError) as error:
            return f"<unreadable: {error}>"
    return guarded


def memory(address, size):
    """The bytes at an address."""
    if size == 0:
        return b""
    try:
        return gdb.selected_inferior().read_memory(address, size).tobytes()
    except gdb.error:
        raise Damaged(f"no memory at {address:#x}") from None


def pointer_at(address):
    return int.from_bytes(memory(address, POINTER_SIZE), "little")


def address_of(value):
    if value.address is None:
        raise Damaged("not in memory")
    return int(value.address)


def text_of(value):
    """A std::string's text in quotes, its first characters where it is long."""
    size = int(value["_M_string_length"])
    first = int(value["_M_dataplus"]["_M_p"])
    is_short = first == int(value["_M_local_buf"].address)
    if size > (15 if is_short else int(value["_M_allocated_capacity"])) or first == 0:
        raise Damaged("no string")
    return quoted(memory(first, min(size, LONGEST_TEXT)), size)


def quoted(data, size):
    """The text in quotes of which there are `size` bytes; others than text are escaped."""
    shows_all = "utf" in locale.getpreferredencoding(False).lower()
    shown = []
    for character in data.decode("utf-8", "surrogateescape"):
        code = ord(character)
        if character in '"\\':
            shown.append("\\" + character)
        elif 0xDC80 <= code <= 0xDCFF:
            shown.append(f"\\x{code - 0xDC00:02x}")
        elif character.isprintable() and (shows_all or code < 0x80):
            shown.append(character)
        else:
            shown.append(character.encode("unicode_escape").decode())
    return '"' + "".join(shown) + ('"...' if len(data) < size else '"')


def hexadecimal(data, size, mark=None):
    """Bytes of which there are `size`, with a bar at the place `mark`."""
    shown = [f"{byte:02x}" for byte in data]
    if mark is not None and mark <= len(shown):
        shown.insert(mark, "|")
    if len(data) < size:
        shown.append("...")
    return " ".join(shown)


class View:
    """A printer: what `show` says of the object."""

    def __init__(self, value):
        self.value = value

    @noted
    def to_string(self):
        return self.show()


class String(View):
    def show(self):
        return text_of(self.value)


# Times and durations.

def calendar(high, low):
    if high == 0 and low == 0:
        return "no time"
    year, month, date, hour = high >> 16, high >> 12 & 15, high >> 7 & 31, high >> 2 & 31
    minute, second, millisecond, microsecond = low >> 26, low >> 20 & 63, low >> 10 & 1023, low & 1023
    text = f"{year:04}-{month:02}-{date:02} {hour:02}:{minute:02}:{second:02}.{millisecond:03}{microsecond:03}"
    is_real = (1 <= month <= 12 and 1 <= date <= 31 and hour <= 23 and minute <= 59 and second <= 59 and
               millisecond <= 999 and microsecond <= 999)
    return text if is_real else f"{text} <no such time>"


def duration(minutes, fraction):
    microseconds = round(fraction / 35.791394)
    text = f"{minutes // 1440} d {minutes // 60 % 24:02}:{minutes % 60:02}:{microseconds / 1e6:09.6f}"
    return text if fraction < 2147483640 else f"{text} <fraction of a minute and more>"


class Time(View):
    def show(self):
        data = self.value["m_data"]
        return calendar(int(data["High"]), int(data["Low"]))


class PlainTime(View):
    def show(self):
        return calendar(int(self.value["High"]), int(self.value["Low"]))


class TimeValue(View):
    def show(self):
        return duration(int(self.value["m_minutes"]), int(self.value["m_fraction"]))


class PlainTimeValue(View):
    def show(self):
        return duration(int(self.value["Minutes"]), int(self.value["Fraction"]))


class TimeSpan(View):
    def show(self):
        return f"{int(self.value['m_seconds'])} s"


# Settings.

def data_of(value):
    kind, size, data = int(value["m_type"]), int(value["m_size"]), value["m_data"]
    if kind == 2:
        return f"int32 {int(data['number'])}"
    if kind == 3:
        return "unknown"
    if kind not in (0, 1):
        raise Damaged(f"data of no type, {kind}")
    first = int(data["buffer"])
    if first == 0:
        raise Damaged("data without bytes")
    if kind == 1:
        return f"binary {hexadecimal(memory(first, min(size, MOST_BYTES)), size)}".rstrip()
    memory(first + size, 1)
    text = memory(first, min(size, LONGEST_TEXT)).split(b"\0")[0]
    return f"string {quoted(text, len(text) if len(text) < LONGEST_TEXT else size - 1)}"


def changed(value):
    return ", changed" if int(value["m_dirty"]) else ""


class PropertyData(View):
    def show(self):
        return data_of(self.value)


class PropertyValue(View):
    def show(self):
        return f"{text_of(self.value['m_name'])}: {PropertyDataText(self.value['m_data'])}{changed(self.value)}"


@noted
def PropertyDataText(value):
    return data_of(value)


class PropertyKey(View):
    """A key and, as its children, its sub-keys and its values."""

    def show(self):
        text = text_of(self.value["m_name"])
        if "m_documentDescription" in fields_of(self.value.type):
            text = f"{text_of(self.value['m_documentDescription'])}, root {text}"
        return text + changed(self.value) + (" <in a circle>" if self.is_circular() else "")

    def is_circular(self):
        """Whether the keys above have no end."""
        key, seen = self.value, {address_of(self.value)}
        while int(key["m_holder"]):
            if int(key["m_holder"]) in seen or len(seen) > MOST_LEVELS:
                return True
            seen.add(int(key["m_holder"]))
            key = key["m_holder"].dereference()
        return False

    def children(self):
        try:
            if self.is_circular():
                return
        except (gdb.error, Damaged):
            return
        yield from self.items("key", "m_children")
        yield from self.items("value", "m_values")

    def items(self, label, member):
        """The items of a list: behind a std::unique_ptr, which is its pointer; a std::vector of pointers begins
        it, which is the address of the first and that behind the last."""
        own = address_of(self.value)
        try:
            items = pointer_at(address_of(self.value[member]))
            first, end = (pointer_at(items), pointer_at(items + POINTER_SIZE)) if items else (0, 0)
            count = (end - first) // POINTER_SIZE
            if end < first or (end - first) % POINTER_SIZE or count > MOST_ITEMS:
                raise Damaged("no list")
        except (gdb.error, Damaged) as error:
            yield f"{label}s", f"<{error}>"
            return
        item_type = gdb.lookup_type("Quarn::PropertyKey" if label == "key" else "Quarn::PropertyValue").pointer()
        seen = set()
        for index in range(count):
            name = f"{label}[{index}]"
            try:
                address = pointer_at(first + index * POINTER_SIZE)
                item = gdb.Value(address).cast(item_type).dereference()
                # So no key is met twice, whatever the pointers say.
                if address == 0 or address in seen or int(item["m_holder"]) != own:
                    raise Damaged("not held here")
                seen.add(address)
                yield name, item
            except (gdb.error, Damaged) as error:
                yield name, f"<{error}>"


def fields_of(kind):
    return {field.name for field in kind.strip_typedefs().fields()}


# Quantities and header blocks.

def unit_name(unit):
    name = str(unit).rpartition("::")[2]
    return name if 0 <= int(unit) <= 12 and name.isalpha() else f"<unit {int(unit)}>"


def time_unit_name(unit):
    return f"time unit {int(unit)}" if int(unit) != 8 else "no time unit"


def number(value):
    return f"{float(value['value']):.7g}"


class Distance(View):
    def show(self):
        return f"{number(self.value)} {unit_name(self.value['unit'])}"


class InverseDistance(View):
    def show(self):
        return f"{number(self.value)} per {unit_name(self.value['unit'])}"


class Velocity(View):
    def show(self):
        unit = self.value["unit"]
        return f"{number(self.value)} {unit_name(unit['distance'])} per {time_unit_name(unit['time'])}"


class DTime(View):
    def show(self):
        return f"{number(self.value)} in {time_unit_name(self.value['unit'])}"


class HeaderBlock(View):
    def show(self):
        tag = int(self.value["id"])
        return f"id {tag:#010x} {quoted(tag.to_bytes(4, 'big'), 4)}, version {int(self.value['version'])}"


# Streams.

class StreamView(View):
    def window(self, block, size):
        """The place in a block up to which it is used, as the stream's open window has it; none when it is closed."""
        next_byte = int(self.value["m_window"]["next"])
        if next_byte == 0:
            return None
        if not 0 <= next_byte - block <= size:
            raise Damaged("a window outside the stream's block")
        return next_byte - block

    def mode(self):
        text = ", in dump mode" if int(self.value["m_dumpMode"]) else ""
        indent = int(self.value["m_indent"])
        return f"{text}, indented by {indent}" if indent else text


class MemoryStream(StreamView):
    def show(self):
        block, size = int(self.value["m_buffer"]), int(self.value["m_size"])
        place = int(self.value["m_position"])
        state = (", failed" if int(self.value["m_failed"]) else "") + self.mode()
        if block == 0:
            return f"memory, at {place} of {size} bytes, without a block{state}"
        if not 0 <= size < 1 << 32:
            raise Damaged(f"a block of {size} bytes")
        open_at = self.window(block, size)
        place = open_at if open_at is not None else place
        owner = "" if int(self.value["m_owns"]) else ", lent"
        data = memory(block, min(size, MOST_BYTES))
        return f"memory, at {place} of {size} bytes{owner}{state}: {hexadecimal(data, size, place)}".rstrip()


class InputFile(StreamView):
    def show(self):
        window = self.value["m_window"]
        at_hand = int(window["end"]) - int(window["next"])
        if not 0 <= at_hand < 1 << 32:
            raise Damaged("a window that ends before it begins")
        return f"reads {path_of(self.value)}, {at_hand} bytes at hand"


class OutputFile(StreamView):
    def show(self):
        return f"writes {path_of(self.value)}{self.mode()}"


def path_of(value):
    return text_of(value["m_path"]) if int(value["m_path"]["_M_string_length"]) else "no file"


class CountingStream(StreamView):
    def show(self):
        block = self.value["m_block"]
        waiting = self.window(int(block.address), block.type.sizeof) or 0
        size = (int(self.value["m_size"]) + waiting) % (1 << 32)
        if not int(self.value["m_crcEnabled"]):
            return f"counts {size} bytes{self.mode()}"
        counted = ~int(self.value["m_crc"]["m_register"]) & 0xFFFFFFFF
        crc = zlib.crc32(memory(int(block.address), waiting), counted)
        return f"counts {size} bytes, CRC {crc:#010x}{self.mode()}"


class NullStream(StreamView):
    def show(self):
        return f"takes everything, brings nothing{self.mode()}"


class TextStream(StreamView):
    def show(self):
        return f"collects {text_of(self.value['m_text'])}{self.mode()}"


VIEWS = {
    "Quarn::string": String,
    "Quarn::Time": Time,
    "Quarn::UTCTime": Time,
    "Quarn::LocalTime": Time,
    "Win32Quarn::Time": Time,
    "Quarn::TIME": PlainTime,
    "Quarn::TimeValue": TimeValue,
    "Quarn::TIMEVALUE": PlainTimeValue,
    "Quarn::TimeSpan": TimeSpan,
    "Quarn::PropertyData": PropertyData,
    "Quarn::PropertyValue": PropertyValue,
    "Quarn::PropertyKey": PropertyKey,
    "Quarn::PropertyCollection": PropertyKey,
    "Quarn::Distance<float>": Distance,
    "Quarn::InverseDistance<float>": InverseDistance,
    "Quarn::Velocity<float>": Velocity,
    "Quarn::DTime<float>": DTime,
    "Quarn::Stream::HeaderBlock": HeaderBlock,
    "Quarn::memorystream": MemoryStream,
    "Quarn::memorydumpstream": MemoryStream,
    "Quarn::ifstream": InputFile,
    "Quarn::ofstream": OutputFile,
    "Quarn::sofdumpstream": OutputFile,
    "Quarn::softextstream": OutputFile,
    "Quarn::statstream": CountingStream,
    "Quarn::statdumpstream": CountingStream,
    "Quarn::nullstream": NullStream,
    "Quarn::stringostream": TextStream,
    "Quarn::stringodumpstream": TextStream,
}


class Views(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("QuarnUtil")

    def __call__(self, value):
        if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        view = VIEWS.get(value.type.unqualified().strip_typedefs().unqualified().name)
        return view(value) if view else None


gdb.printing.register_pretty_printer(gdb.current_objfile(), Views(), replace=True)
