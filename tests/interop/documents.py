# SPDX-License-Identifier: Apache-2.0
"""The documents of the protocol: bytes to Python values and back, with every rule that docs/wire-protocol.md states."""

import struct

DEEPEST = 32


class Malformed(Exception):
    """Bytes that are no document."""


class Int64(int):
    """An integer that is written with 64 bits."""


class Binary(bytes):
    """Bytes with a subtype."""

    def __new__(cls, data, subtype=0):
        made = super().__new__(cls, data)
        made.subtype = subtype
        return made


class Elements(list):
    """Pairs of name and value where a dict is too good: names may occur twice, names and texts may be any bytes."""


class Raw:
    """A value of any element type, as bytes."""

    def __init__(self, code, data):
        self.code = code
        self.data = data


def _bytes(text):
    return text if isinstance(text, bytes) else text.encode()


def _value(value):
    """The code and the bytes of a value. Bytes that are not `Binary` are the bytes of a text."""
    if isinstance(value, Raw):
        return value.code, value.data
    if isinstance(value, bool):
        return 0x08, bytes([value])
    if isinstance(value, Int64) or (isinstance(value, int) and not -(2**31) <= value < 2**31):
        return 0x12, struct.pack("<q", value)
    if isinstance(value, int):
        return 0x10, struct.pack("<i", value)
    if isinstance(value, float):
        return 0x01, struct.pack("<d", value)
    if isinstance(value, Binary):
        return 0x05, struct.pack("<iB", len(value), value.subtype) + value
    if isinstance(value, (str, bytes)):
        text = _bytes(value)
        return 0x02, struct.pack("<i", len(text) + 1) + text + b"\0"
    if isinstance(value, (dict, Elements)):
        return 0x03, encode(value)
    if isinstance(value, list):
        return 0x04, encode(Elements((str(i), item) for i, item in enumerate(value)))
    if value is None:
        return 0x0A, b""
    raise TypeError(type(value))


def encode(document):
    elements = b""
    for name, value in document if isinstance(document, Elements) else document.items():
        code, data = _value(value)
        elements += bytes([code]) + _bytes(name) + b"\0" + data
    return struct.pack("<i", len(elements) + 5) + elements + b"\0"


class _Reader:
    def __init__(self, data, at, end):
        self.data = data
        self.at = at
        self.end = end

    def take(self, size):
        if size < 0 or self.at + size > self.end:
            raise Malformed("cut")
        self.at += size
        return self.data[self.at - size : self.at]

    def number(self, form):
        return struct.unpack("<" + form, self.take(struct.calcsize("<" + form)))[0]

    def name(self):
        zero = self.data.find(b"\0", self.at, self.end)
        if zero < 0:
            raise Malformed("name without end")
        name = self.take(zero - self.at)
        self.take(1)
        return _text(name)

    def text(self):
        text = self.take(self.number("i"))
        if not text.endswith(b"\0"):
            raise Malformed("text without end")
        return _text(text[:-1])

    def inner(self):
        length = struct.unpack("<i", self.take(4))[0]
        self.at -= 4
        return self.take(length)


def _text(data):
    try:
        return data.decode("utf-8", "strict")
    except UnicodeDecodeError as error:
        raise Malformed(f"not UTF-8: {data!r}") from error


def _decode_value(reader, code, depth):
    if code == 0x01:
        return reader.number("d")
    if code == 0x02:
        return reader.text()
    if code == 0x03:
        return decode(reader.inner(), depth + 1)
    if code == 0x04:
        items = decode(reader.inner(), depth + 1)
        if list(items) != [str(i) for i in range(len(items))]:
            raise Malformed("elements of an array are not numbered")
        return list(items.values())
    if code == 0x05:
        size = reader.number("i")
        subtype = reader.number("B")
        return Binary(reader.take(size), subtype)
    if code == 0x08:
        flag = reader.number("B")
        if flag > 1:
            raise Malformed("boolean")
        return flag == 1
    if code == 0x0A:
        return None
    if code == 0x10:
        return reader.number("i")
    if code == 0x12:
        return Int64(reader.number("q"))
    raise Malformed(f"element type {code:#x}")


def decode(data, depth=1):
    """The document that `data` is, exactly."""
    if depth > DEEPEST or len(data) < 5 or struct.unpack_from("<i", data)[0] != len(data) or data[-1] != 0:
        raise Malformed("length, depth or end")
    reader = _Reader(data, 4, len(data) - 1)
    document = {}
    while reader.at < reader.end:
        code = reader.number("B")
        name = reader.name()
        if name in document:
            raise Malformed(f"{name} occurs twice")
        document[name] = _decode_value(reader, code, depth)
    return document


def decode_all(data):
    """Documents, one directly behind the other."""
    documents = []
    while data:
        if len(data) < 5:
            raise Malformed("cut")
        length = struct.unpack_from("<i", data)[0]
        documents.append(decode(data[:length]))
        data = data[length:]
    return documents
