"""From what a playbook wants to what is sent: reads, compares, writes the differences to the candidate, puts them into
force with one commit, or takes them back."""

from __future__ import annotations

import dataclasses
import json

from . import olt_api
from .elements import ELEMENTS, ONT, PREFIX, SERVICE, SERVICES_OF_AN_ONT, all_places, named, places, rectangles
from .records import default_of, differences, merged, shown

MERGED, REPLACED, ABSENT = "merged", "replaced", "absent"


class Trouble(Exception):
    """Why the OLT does not become what is wanted."""

    def __init__(self, text, errors=(), element=None, indices=None):
        super().__init__(text)
        self.errors, self.element, self.indices = list(errors), element, indices


@dataclasses.dataclass
class Change:
    """One record that is to become another one."""

    element: str
    place: tuple
    before: dict
    after: dict


@dataclasses.dataclass
class Wish:
    """One item of a playbook's configuration."""

    element: str
    places: list
    record: dict
    state: str

    @classmethod
    def read(cls, item):
        """Raises ValueError."""
        name = named(item["element"])
        if item["state"] == ABSENT and item["record"]:
            raise ValueError(f"{name}: a record that is to be absent has no keys")
        return cls(name, places(name, item["indices"]), item["record"] or {}, item["state"])

    def parts(self):
        """The elements and places that it speaks of."""
        yield self.element, self.places
        if self.element == ONT and self.state == ABSENT:
            yield SERVICE, [(*place, service) for place in self.places for service in range(1, SERVICES_OF_AN_ONT + 1)]


def read(client, name, some_places, config=olt_api.RUNNING):
    """Records by place."""
    records = {}
    for lists in rectangles(some_places):
        records.update(_listed(client, name, lists, config))
    return records


def changes_for(client, wishes):
    """What has to change in what runs, and which ONTs are to be deleted. Of wishes for the same record, a later one comes on
    top of those before it."""
    constants = client.get("monitoring.constants")
    wanted_places = {}
    for wish in wishes:
        for name, some_places in wish.parts():
            wanted_places.setdefault(name, set()).update(some_places)
    for name, some_places in wanted_places.items():
        _require_places(name, some_places, constants)
    present = {name: read(client, name, some_places) for name, some_places in wanted_places.items()}
    wanted = {name: dict(records) for name, records in present.items()}
    deleted = set()
    for wish in wishes:
        for name, some_places in wish.parts():
            for place in some_places:
                base = wanted[name][place] if wish.state == MERGED else default_of(name)
                wanted[name][place] = _merged(wish, base, place) if name == wish.element else base
                (deleted.add if wish.state == ABSENT and wish.element == ONT else deleted.discard)(place[:2])
    changes = [Change(name, place, before, wanted[name][place]) for name, records in present.items()
               for place, before in records.items() if before != wanted[name][place]]
    for change in changes:
        if ELEMENTS[change.element].is_read_only:
            fields = ", ".join(differences(change.before, change.after)[0])
            raise Trouble(f"{change.element} can be read only, and differs in {fields}", element=change.element)
    return changes, deleted & {change.place[:2] for change in changes if change.element in (ONT, SERVICE)}


def _merged(wish, base, place):
    try:
        return merged(wish.record, base)
    except ValueError as error:
        text = "/".join(map(str, place))
        raise Trouble(f"{wish.element}{' ' if text else ''}{text}: {error}", element=wish.element, indices=text) from error


def _require_places(name, some_places, constants):
    lasts = [numbers[-1] for numbers in map(olt_api.numbers, all_places(name, constants))]
    for place in sorted(some_places):
        if any(number > last for number, last in zip(place, lasts)):
            text = "/".join(map(str, place))
            raise Trouble(f"{name} {text}: this OLT has none; the last one is {'/'.join(map(str, lasts))}",
                          element=name, indices=text)


def together(rows):
    """Rows of element, place and value: those with the same value in as few index lists as possible, as element, index
    lists, value."""
    alike = {}
    for name, place, value in rows:
        alike.setdefault((name, json.dumps(value, sort_keys=True)), (value, []))[1].append(place)
    for (name, dummy), (value, some_places) in alike.items():
        for lists in rectangles(some_places):
            yield name, lists, value


def export(client, names=()):
    """What runs of these elements, or of all that can be written, as items of a playbook's configuration."""
    constants = client.get("monitoring.constants")
    items = []
    for name in names or [name for name, element in ELEMENTS.items() if not element.is_read_only]:
        records = {}
        for lists in _parts(all_places(name, constants)):
            records.update(_listed(client, name, lists, olt_api.RUNNING))
        rows = [(name, place, shown(record)) for place, record in records.items()
                if record != ELEMENTS[name].record or not place]
        items += [{"element": name, "indices": "/".join(lists), "record": record, "state": REPLACED}
                  for name, lists, record in together(rows)]
    return items


def foreign_edits(client):
    """An element whose candidate is not what runs, and one index list of such records; None, None when there is none."""
    constants = client.get("monitoring.constants")
    for name in ELEMENTS:
        # Port by port, so that others who ask the OLT do not wait for the whole of it.
        for lists in _parts(all_places(name, constants)):
            running, candidate = (_listed(client, name, lists, config) for config in (olt_api.RUNNING, olt_api.CANDIDATE))
            if running != candidate:
                edited = [place for place, record in running.items() if candidate[place] != record]
                return name, "/".join(rectangles(edited)[0])
    return None, None


def _parts(lists):
    return [(str(number), *lists[1:]) for number in olt_api.numbers(lists[0])] if len(lists) > 1 else [lists]


def _listed(client, name, lists, config):
    if lists:
        return dict(client.each(PREFIX + name, *lists, config=config))
    return {(): client.get(PREFIX + name, config=config)}


class Edit:
    """The changes on their way through the candidate. `reopen` gets a client a new connection."""

    def __init__(self, client, changes, reopen):
        self.client, self.planned, self.reopen = client, changes, reopen
        self.changes = changes  # those that the OLT sees as such

    def check(self):
        """Has the OLT look at the records without taking them: only the candidate can be set, so that what is asked of
        running is looked at and then refused."""
        for name, lists, record in self._records(self.planned, "after"):
            path = PREFIX + name
            answer = self.client.ask(path, "set", indices=lists, data=record, config_type=olt_api.RUNNING)
            refusal = olt_api.Refused(answer, path, "set")
            refusal.errors = [error for error in refusal.errors if error.path != path]
            if refusal.errors:
                raise _trouble(refusal, name, lists)

    def write(self, deleted=frozenset()):
        for lists in rectangles(deleted):
            self._send(self.client.delete, ONT, lists)
        left = [change for change in self.planned
                if change.element not in (ONT, SERVICE) or change.place[:2] not in deleted]
        for name, lists, record in self._records(left, "after"):
            self._send(self.client.set, name, lists, record)
        self._take_stock()

    def _take_stock(self):
        """What the OLT has made of it becomes the truth: it may write a value otherwise than the playbook."""
        candidate = self._read(olt_api.CANDIDATE)
        for change in self.planned:
            made = candidate[change.element][change.place]
            if made != change.after:
                change.after = made
        self.changes = [change for change in self.planned if change.before != change.after]

    def commit(self):
        try:
            self.client.commit()
        except olt_api.Refused as refusal:
            raise Trouble("; ".join(map(str, refusal.errors)) or str(refusal), refusal.errors) from refusal
        except olt_api.ApiError:
            # It may have been carried out.
            self.reopen(self.client)
            running = self._read(olt_api.RUNNING)
            if any(running[change.element][change.place] != change.after for change in self.planned):
                raise

    def take_back(self):
        """Gives the candidate what runs of these records. Edits that others have begun meanwhile stay, and it takes no
        more privilege than to write."""
        for name, lists, record in self._records(self.planned, "before"):
            self._send(self.client.set, name, lists, record)

    @staticmethod
    def _records(changes, side):
        return together((change.element, change.place, getattr(change, side)) for change in changes)

    def _send(self, act, name, lists, *data):
        try:
            act(PREFIX + name, *data, *lists)
        except olt_api.Refused as refusal:
            raise _trouble(refusal, name, lists) from refusal

    def _read(self, config):
        names = dict.fromkeys(change.element for change in self.planned)
        return {name: read(self.client, name, [change.place for change in self.planned if change.element == name], config)
                for name in names}


def _trouble(refusal, name, lists):
    place = "/".join(lists)
    reasons = "; ".join(map(str, refusal.errors)) or str(refusal)
    return Trouble(f"{name}{' ' if place else ''}{place}: {reasons}", refusal.errors, name, place)


def report_of(changes):
    """The changes, those that are alike together: element, indices, and by key path what was and what is."""
    rows = [(change.element, change.place, differences(change.before, change.after)) for change in changes]
    return [{"element": name, "indices": "/".join(lists), "before": before, "after": after}
            for name, lists, (before, after) in together(rows)]


def diff_of(report):
    """In the form in which Ansible shows differences."""
    def text(side):
        return "".join(f"{row['element']} {row['indices']}".strip() + "\n" +
                       "".join(f"  {path}: {json.dumps(value, ensure_ascii=False)}\n" for path, value in row[side].items())
                       for row in report)
    return {"before": text("before"), "after": text("after"), "before_header": "running", "after_header": "wanted"}
