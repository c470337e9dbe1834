"""Records as playbooks write them, and as the OLT has them: what one makes of the other, and where two differ."""

from __future__ import annotations

import copy
import re

from . import olt_api
from .elements import ELEMENTS, ITEMS, PORT_SETS

HIDDEN = "(hidden)"
SERIAL_BYTES, RECORD_BYTES = 8, 10  # [G.984.3 9.2]; the last two of a record are 0


def default_of(name):
    return copy.deepcopy(ELEMENTS[name].record)


def merged(wanted, present):
    """The record `present` with the keys that `wanted` names, whose values are brought into the form in which the OLT
    answers. Raises ValueError for a key that records of this element do not have."""
    return _object(wanted, present, "")


def _object(wanted, present, path):
    if not isinstance(wanted, dict):
        raise ValueError(f"{path or 'record'}: keys and values are expected, not {wanted!r}")
    unknown = [str(key) for key in wanted if key not in present]
    if unknown:
        raise ValueError(f"{path}{'.' if path else ''}{unknown[0]}: there is no such key; there are {', '.join(present)}")
    return {key: _value(key, wanted[key], value, f"{path}.{key}".strip("."))
            if key in wanted else value for key, value in present.items()}


def _value(key, wanted, present, path):
    if key == "serial" and isinstance(wanted, str):
        return serial_bytes(wanted)
    if key == "tagged_vlans":
        return _canonical_list(str(wanted))
    if isinstance(present, list):
        return _list(key, wanted, present, path)
    if isinstance(present, dict):
        return _object(wanted, present, path)
    return _plain(wanted, present)


def _list(key, wanted, present, path):
    if not isinstance(wanted, list):
        raise ValueError(f"{path}: a list is expected, not {wanted!r}")
    if key in PORT_SETS:
        numbers = [_plain(item, 0) for item in wanted]
        return sorted(numbers) if all(isinstance(number, int) for number in numbers) else numbers
    if key in ITEMS:  # as long as is wanted; the items are new ones
        return [_object(item, {**dict.fromkeys(item, ""), **ITEMS[key]}, f"{path}.{position}")
                if isinstance(item, dict) else item for position, item in enumerate(wanted)]
    # As long as ever: what is not wanted of it stays.
    items = [_value("", item, present[position], f"{path}.{position}") if position < len(present) else item
             for position, item in enumerate(wanted)]
    return items + present[len(items):]


def _plain(wanted, present):
    """Templates make texts of numbers, and YAML makes false of `off`."""
    if isinstance(present, bool):
        return {"true": True, "yes": True, "false": False, "no": False}.get(str(wanted).lower(), wanted)
    if isinstance(present, int):
        return int(wanted) if isinstance(wanted, str) and re.fullmatch(r"-?[0-9]+", wanted.strip()) else wanted
    if isinstance(wanted, bool):
        return "on" if wanted else "off"
    return str(wanted) if isinstance(wanted, (int, float)) else wanted


def _canonical_list(text):
    try:
        return olt_api.ranges_of(olt_api.numbers(text.replace(" ", "")))
    except ValueError:
        return text  # the OLT tells what is wrong with it


def serial_bytes(text):
    """ "SIMUA0010001" or "53494D55A0010001" as the OLT has it; "" is none."""
    if text == "":
        return [0] * RECORD_BYTES
    parts = re.fullmatch(r"([A-Za-z]{4})([0-9A-Fa-f]{8})|([0-9A-Fa-f]{16})", text)
    if not parts:
        raise ValueError(f"serial: {text!r} is no serial such as SIMUA0010001 or 53494D55A0010001")
    known = parts[1].encode() + bytes.fromhex(parts[2]) if parts[1] else bytes.fromhex(parts[3])
    return [*known, *[0] * (RECORD_BYTES - SERIAL_BYTES)]


def serial_text(numbers):
    if not any(numbers):
        return ""
    known = bytes(numbers[:SERIAL_BYTES])
    vendor = known[:4].decode("latin-1")
    return (vendor if re.fullmatch("[A-Za-z]{4}", vendor) else known[:4].hex().upper()) + known[4:].hex().upper()


def shown(record):
    """A record for people and playbooks: its serial as text."""
    return {**record, "serial": serial_text(record["serial"])} if "serial" in record else record


def differences(before, after):
    """The values that two records have different, by key path ("servers.1.address"): those of one, those of the other.
    Secrets are hidden."""
    left, right = _flat(shown(before)), _flat(shown(after))
    paths = [path for path in {**left, **right} if left.get(path) != right.get(path)]
    return ({path: _hidden(path, left[path], "") for path in paths if path in left},
            {path: _hidden(path, right[path], ", new") for path in paths if path in right})


def is_secret(path):
    key = path.rpartition(".")[2]
    return key.endswith("secret") or key == "password"


def _hidden(path, value, note):
    return f"{HIDDEN}{note}" if value and is_secret(path) else value


def _flat(value, path=""):
    if isinstance(value, dict):
        parts = value.items()
    elif isinstance(value, list) and any(isinstance(item, dict) for item in value):
        parts = enumerate(value)
    else:
        return {path: value}
    return {deeper: leaf for key, part in parts for deeper, leaf in _flat(part, f"{path}.{key}".strip(".")).items()}


def secrets_of(value, path=""):
    """The texts in a record, or a part of one, that nobody is to read in a report."""
    return {leaf for key, leaf in _flat(value, path).items() if leaf and isinstance(leaf, str) and is_secret(key)}
