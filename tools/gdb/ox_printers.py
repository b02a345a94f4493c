"""gdb pretty-printers for arrays, field tables, streams, compressors and the record of the last error.

Nothing of the process is called, so core files work, and no debug information of the library is
needed for arrays and field tables: their layout is part of the binary interface. Every count is
checked before memory is read for it, and what is shown is bounded; a header that cannot be right is
shown as far as it can be read, with what is wrong.
"""
import struct

import gdb

MAX_VALUES = 10     # numbers shown of one array
MAX_TEXT = 200      # characters shown
MAX_CHILDREN = 200  # cells, fields and names shown
MAX_DIMS = 64
MAX_ELEMENTS = 2**48 - 1

# By class code: name, and how one element is unpacked (None: elements are no values).
CLASSES = {
    0: ("unknown", None), 1: ("cell", None), 2: ("struct", None), 3: ("logical", "B"), 4: ("char", "H"),
    6: ("double", "d"), 7: ("single", "f"), 8: ("int8", "b"), 9: ("uint8", "B"), 10: ("int16", "h"),
    11: ("uint16", "H"), 12: ("int32", "i"), 13: ("uint32", "I"), 14: ("int64", "q"), 15: ("uint64", "Q"),
    16: ("function_handle", None), 17: ("opaque", None), 18: ("object", None),
}
CELL, STRUCT, LOGICAL, CHAR, OBJECT = 1, 2, 3, 4, 18
SPARSE, NUMERIC, OPAQUE_SIZES = 1 << 5, 1 << 9, 1 << 11
FLAGS = ["scalar-double", None, "empty-bracket", "global", "list-mark", "sparse", "header-kept", "colon",
         "private-data", "numeric", "comma-list", "opaque-indexing", "reusable"]
SCOPES = {0: "none", 3: "contained", 4: "temporary", 5: "error-stack", 6: "property", 7: "destroyed"}


class Corrupt(Exception):
    """What is wrong with the memory that was looked at."""


def read(address, form):
    """Unpacks values of the target, which is little-endian like every platform of the library."""
    form = "<" + form
    try:
        memory = gdb.selected_inferior().read_memory(address, struct.calcsize(form))
    except (gdb.MemoryError, OverflowError, gdb.error):
        raise Corrupt("no memory at 0x%x" % address)
    return struct.unpack(form, memory.tobytes())


def quoted(text, mark):
    """Text on one line: control characters and halves of pairs as escapes."""
    shown = "".join(c if c.isprintable() else "\\x%02x" % ord(c) if ord(c) < 256 else "\\u%04x" % ord(c)
                    for c in text)
    return mark + shown + mark


def c_string(address):
    """The bytes up to the NUL, MAX_TEXT at most, read piece by piece: the end of a page may come first."""
    if not address:
        return "null"
    raw = b""
    while len(raw) < MAX_TEXT:
        (byte,) = read(address + len(raw), "c")
        if byte == b"\0":
            return quoted(raw.decode("utf-8", "replace"), '"')
        raw += byte
    return quoted(raw.decode("utf-8", "replace"), '"') + "..."


def array_pointer(address):
    """A child that prints itself as an array. Without a type of that name, its address in figures."""
    for name in ("oxArray_tag", "oxArray"):
        try:
            return gdb.Value(address).cast(gdb.lookup_type(name).pointer())
        except gdb.error:
            pass
    return address


class Array:
    """An array's header, read and checked."""

    def __init__(self, address):
        self.address = address
        (self.code, self.scope, self.link, self.ndims, self.owners, self.flags) = read(address + 8, "iiQQII")
        self.words = read(address + 56, "QQQQQ")
        self.problem = None
        self.dims = ()
        try:
            self.name, self.form = self.class_row()
            self.dims = self.read_dims()
            self.count = self.element_count()
        except Corrupt as problem:
            self.problem = str(problem)

    def class_row(self):
        if self.code not in CLASSES:
            raise Corrupt("class code %d" % self.code)
        return CLASSES[self.code]

    def read_dims(self):
        if not 2 <= self.ndims <= MAX_DIMS:
            raise Corrupt("%d dimensions" % self.ndims)
        at = self.address + 40 if self.ndims == 2 else read(self.address + 40, "Q")[0]
        return read(at, "Q" * self.ndims)

    def element_count(self):
        count = 1
        for d in self.dims:
            count *= d
        # The sizes of a sparse array say nothing about its memory; its column starts do.
        if count > MAX_ELEMENTS and not self.flags & SPARSE:
            raise Corrupt("sizes %s" % "x".join(map(str, self.dims)))
        return count

    def is_complex(self):
        return bool(self.flags & NUMERIC and self.words[1])

    def head(self):
        parts = ["sparse"] if self.flags & SPARSE else []
        if self.is_complex():
            parts.append("complex")
        parts.append(self.name)
        parts.append("x".join(map(str, self.dims)) + ("?" if self.flags & OPAQUE_SIZES else ""))
        return " ".join(parts)

    def flag_names(self):
        names = [FLAGS[k] for k in range(len(FLAGS)) if self.flags >> k & 1 and FLAGS[k]]
        user = self.flags >> 24
        return names + (["user:0x%02x" % user] if user else [])

    def details(self):
        """Flags, scope, and who shares the header or the data."""
        parts = self.flag_names() + ["scope:%s" % SCOPES.get(self.scope, self.scope)]
        if self.owners:
            parts.append("owners:%d" % (self.owners + 1))
        if self.link:
            parts.append("ring:0x%x" % self.link)
        return ", ".join(parts)

    def numbers(self, first, count):
        """Elements first to first + count - 1 as texts."""
        size = struct.calcsize(self.form)
        real = read(self.words[0] + first * size, self.form * count)
        if self.code == LOGICAL:
            return ["true" if x else "false" for x in real]
        texts = ["%.7g" % x if self.form == "f" else repr(x) for x in real]
        if self.is_complex():
            imag = read(self.words[1] + first * size, self.form * count)
            texts = ["%s%+gi" % (t, y) for t, y in zip(texts, imag)]
        return texts

    def full_values(self):
        if not self.count:
            return ""
        if not self.words[0]:
            raise Corrupt("no data")
        if self.code == CHAR:
            return self.text()
        shown = min(self.count, MAX_VALUES)
        return "[%s%s]" % (", ".join(self.numbers(0, shown)), ", ..." if self.count > shown else "")

    def text(self):
        """The characters as stored; those of one row are the string."""
        shown = min(self.count, MAX_TEXT)
        units = read(self.words[0], "H" * shown)
        text = struct.pack("<%dH" % shown, *units).decode("utf-16-le", "surrogatepass")
        return quoted(text, "'") + ("..." if self.count > shown else "")

    def sparse_values(self):
        """The first stored elements as (row,column) value, both from 1."""
        data, _, rows, starts, capacity = self.words
        m, n = self.dims[0], self.dims[1]
        if not data or not n:
            return ""
        (stored,) = read(starts + 8 * n, "Q")
        if stored > capacity:
            raise Corrupt("%d stored elements in room for %d" % (stored, capacity))
        shown = min(stored, MAX_VALUES)
        if not shown:
            return "[]"
        texts, row = self.numbers(0, shown), read(rows, "Q" * shown)
        cells, column = [], 0
        for k in range(shown):
            column = self.column_of(k, column)
            cells.append("(%d,%d) %s%s" % (row[k] + 1, column + 1, texts[k], "" if row[k] < m else " beyond the rows"))
        return "[%s%s] of %d" % (", ".join(cells), ", ..." if stored > shown else "", stored)

    def column_of(self, k, first):
        """The column, from first on, of the stored element k; the last one with a start of at most k."""
        starts, low, high = self.words[3], first, self.dims[1]
        while high - low > 1:
            middle = (low + high) // 2
            if read(starts + 8 * middle, "Q")[0] <= k:
                low = middle
            else:
                high = middle
        return low

    def values(self):
        if self.form is None or self.flags & OPAQUE_SIZES:
            return ""
        return self.sparse_values() if self.flags & SPARSE else self.full_values()

    def summary(self):
        if self.problem:
            return "<corrupt: %s>" % self.problem
        try:
            return ("%s %s" % (self.head(), self.values())).rstrip()
        except Corrupt as problem:
            return "%s <corrupt: %s>" % (self.head(), problem)

    def slots(self, count):
        if count and not self.words[0]:
            raise Corrupt("no data")
        return read(self.words[0], "Q" * count)

    def cells(self):
        for k, slot in enumerate(self.slots(min(self.count, MAX_CHILDREN))):
            yield "{%d}" % (k + 1), slot

    def fields(self):
        """name, or (k).name with several elements."""
        if not self.words[1]:
            return
        names = FieldTable(self.words[1]).names()
        shown = min(self.count * len(names), MAX_CHILDREN)
        for k, slot in enumerate(self.slots(shown)):
            element, field = divmod(k, len(names))
            yield ("(%d)" % (element + 1) if self.count > 1 else "") + "." + names[field], slot

    def children(self):
        if self.problem:
            return
        members = self.cells if self.code == CELL else self.fields if self.code in (STRUCT, OBJECT) else None
        try:
            for name, slot in members() if members else ():
                yield name, array_pointer(slot)
        except Corrupt as problem:
            yield "<corrupt>", str(problem)


class FieldTable:
    """The field names of struct and object arrays."""

    def __init__(self, address):
        (self.count, self.owners) = read(address, "ii")
        self.address = address
        if self.count < 0 or self.owners < 0:
            raise Corrupt("%d names, %d owners" % (self.count, self.owners))

    def names(self):
        shown = min(self.count, MAX_CHILDREN)
        return [c_string(at).strip('"') for at in read(self.address + 16, "Q" * shown)]


class ArrayPrinter:
    """One array: class, sizes, first values and flags; cells and fields as children."""

    def __init__(self, value):
        self.array = Array(int(value.address))

    def to_string(self):
        return "%s (%s)" % (self.array.summary(), self.array.details())

    def children(self):
        return self.array.children()


class ArrayPointerPrinter:
    """A pointer to an array: its address and, on one line, what is there."""

    def __init__(self, value):
        self.address = int(value)

    def to_string(self):
        if not self.address:
            return "0x0"
        try:
            return "0x%x %s" % (self.address, Array(self.address).summary())
        except Corrupt as problem:
            return "0x%x <corrupt: %s>" % (self.address, problem)


class FieldTablePrinter:
    def __init__(self, value):
        self.address = int(value.address)

    def to_string(self):
        try:
            table = FieldTable(self.address)
            more = ", ..." if table.count > MAX_CHILDREN else ""
            return "%d fields [%s%s], owners:%d" % (table.count, ", ".join(table.names()), more, table.owners)
        except Corrupt as problem:
            return "<corrupt: %s>" % problem


class StreamPrinter:
    """A stream: carrier, options, place. The fields are gdb's, from debug information."""

    KINDS = {1: "file stream", 2: "buffer stream", 4: "sequential stream"}
    OPTIONS = {8: "compress", 16: "utf16-text", 32: "wide", 64: "prefix-pending"}
    ORDERS = {0x4F49: "native", 0x494F: "swapped"}

    def __init__(self, value):
        self.value = value

    def to_string(self):
        s = self.value
        flags = int(s["flags"])
        parts = [self.KINDS.get(flags & 7, "<corrupt: carrier %d>" % (flags & 7)),
                 self.ORDERS.get(int(s["indicator"]), "<corrupt: byte order 0x%04x>" % int(s["indicator"])),
                 "at %d" % int(s["offset"])]
        if flags & 2:
            parts.append("of %d" % int(s["capacity"]))
        parts += [name for bit, name in sorted(self.OPTIONS.items()) if flags & bit]
        return " ".join(parts)

    def children(self):
        s = self.value
        for field in ("handle", "subsystem", "gzip"):
            if int(s[field]):
                yield field, s[field]


class GzipPrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        g = self.value
        state = "finished" if g["finished"] else "reading" if g["reading"] else "writing" if g["writing"] else "new"
        counts = ["%s:%d" % (name, int(g[name])) for name in ("byte_count", "consumed", "delivered", "input_taken", "staged")]
        return "compressor %s, %s" % (state, " ".join(counts))


class ErrorStatePrinter:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            texts = [c_string(int(self.value[name])) for name in ("identifier", "message")]
        except Corrupt as problem:
            texts = ["<corrupt: %s>" % problem]
        return "error %s" % " ".join(texts)

    def children(self):
        if int(self.value["stack"]):
            yield "stack", self.value["stack"]


PRINTERS = {
    "oxArray_tag": ArrayPrinter, "name_index_info": FieldTablePrinter, "oiStreamRec_tag": StreamPrinter,
    "gzipString_tag": GzipPrinter, "oxErrorState_tag": ErrorStatePrinter,
}


class Printers:
    """What gdb asks for a printer of each value."""

    name = "oxarray"
    enabled = True
    subprinters = None

    def __call__(self, value):
        kind = value.type.strip_typedefs()
        if kind.code == gdb.TYPE_CODE_PTR:
            target = kind.target().strip_typedefs()
            return ArrayPointerPrinter(value) if target.tag == "oxArray_tag" else None
        printer = PRINTERS.get(kind.tag)
        if printer in (ArrayPrinter, FieldTablePrinter):
            lacking = value.address is None
        else:
            lacking = printer is None or not kind.fields()  # only declared, as far as gdb knows
        if lacking:
            return None
        try:
            return printer(value)
        except Corrupt:
            return None  # gdb's own way shows what it can.


def register():
    """For the library whose file this was loaded with, or for every one when it was sourced by hand."""
    where = gdb.current_objfile() or gdb
    where.pretty_printers[:] = [p for p in where.pretty_printers if getattr(p, "name", "") != Printers.name]
    where.pretty_printers.insert(0, Printers())


register()
