# SPDX-License-Identifier: Apache-2.0
"""The tables of classes in docs/wire-protocol.md, to judge records by them."""

import os
import re

RESERVED = {"_type": "text", "_tag": "text", "_rev": "int64"}
LIMITS = {"int32": 2**31, "int64": 2**63}


def _tables():
    with open(os.environ["QAV_WIRE_DOCUMENT"], encoding="utf-8") as file:
        text = file.read()
    classes, enumerations = {}, {}
    for section in re.split(r"^#### ", text, flags=re.MULTILINE)[1:]:
        name = section.split("\n", 1)[0]
        fields = re.findall(r"^\| `(\w+)` \| (.+?) \|", section, flags=re.MULTILINE)
        values = re.findall(r"^\| (-?\d+) \| `\w+` \|", section, flags=re.MULTILINE)
        if fields:
            classes[name] = {field: re.sub(r"\[`(\w+)`\]\(#\w+\)", r"\1", kind) for field, kind in fields}
        if values:
            enumerations[name] = {int(value) for value in values}
    return classes, enumerations


CLASSES, ENUMERATIONS = _tables()


def _complaint(value, kind, path):
    if kind.startswith("array of "):
        if not isinstance(value, list):
            return f"{path} is no array"
        complaints = [_complaint(item, kind[len("array of ") :], f"{path}.{i}") for i, item in enumerate(value)]
        return next(filter(None, complaints), None)
    if kind.startswith("document"):
        return complaint(value, path) if isinstance(value, dict) and "_type" in value else f"{path} is no record"
    if kind in CLASSES:
        return complaint(value, path, kind) if isinstance(value, dict) else f"{path} is no document"
    if kind.startswith("int32: "):
        known = ENUMERATIONS[kind[len("int32: ") :]]
        return None if value in known and not isinstance(value, bool) else f"{path} is {value}, none of {known}"
    if kind in LIMITS:
        fits = isinstance(value, int) and not isinstance(value, bool) and -LIMITS[kind] <= value < LIMITS[kind]
        return None if fits else f"{path} is no {kind}: {value!r}"
    expected = {"text": str, "boolean": bool, "double": float}[kind]
    return None if isinstance(value, expected) else f"{path} is no {kind}: {value!r}"


def complaint(record, path="record", name=None):
    """What in a record is not as the document says; None when everything is."""
    if name is None:
        name = record["_type"].removeprefix("nvservice::")
    elif record.get("_type", f"nvservice::{name}") != f"nvservice::{name}":
        return f"{path} is a {record['_type']}"
    fields = {**CLASSES[name], **RESERVED}
    for field, value in record.items():
        if field not in fields:
            return f"{path}.{field} is not in the document"
        found = _complaint(value, fields[field], f"{path}.{field}")
        if found:
            return found
    return None
