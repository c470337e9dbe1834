"""The OLT's management API for Python programs: this one file, the standard library, Python 3.11 or later.

    import olt_api

    with olt_api.Client() as olt:                   # 127.0.0.1 port 9999
        olt.login("admin", file="/etc/olt/password")
        print(olt.get("monitoring.system")["device_info"]["hostname"])
        olt.update("configuration.ZebGCfg.pon.ont", {"description": "house 7"}, "3", "17")
        olt.commit()
        for (port, ont), record in olt.each("configuration.ZebGCfg.pon.ont", "1-16", "1-256"):
            if any(record["serial"]):
                print(port, ont, record["description"])

Paths, records, indices and answers are those of the API reference; there are JSON schemas of all of them. An index is a
number or a text of numbers and ranges ("1-4,7"), counted from 1, one for each level; an ONT has two, its PON port and its
number. What is read comes from the running configuration unless config="candidate" is given; what is written goes to the
candidate, which all sessions share, until commit().

What can go wrong has a class each, all of them of ApiError:

    TransportError   no connection, or one that broke off; the request may or may not have been carried out
    TimeOut          no answer in time; the request may or may not have been carried out. The connection is closed, for
                     the answer might come later: connect() opens another
    Refused          the daemon refused the request; `errors` says why, each with index, text and path
    NotLoggedIn      the same, because no valid session was named: login() has to come first, or once more

One object serves one thread.
"""

import dataclasses
import itertools
import json
import os
import re
import socket
import stat
import time

HOST, PORT = "127.0.0.1", 9999
PATIENCE = 30.0  # seconds; the daemon gives itself 5 s for the peers that a request needs
CANDIDATE, RUNNING = "candidate", "running"

# The errors by index, as the daemon writes them.
ERROR_TEXTS = {
    0: "No error",
    9: "Request could not be processed",
    10: "Index or request data cannot be parsed",
    11: "Wrong number of indices",
    12: "Access denied",
    13: "Configuration type is missing or wrong",
    14: "Commit failed: {p0}",
    20: "Unknown key {p0}",
    21: "Wrong type, expected {p0}",
    22: "Value {p0} is out of range {p1} to {p2}",
    23: "Value {p0} is not a multiple of {p1}",
    24: "Text is too long, {p0} bytes of at most {p1}",
    25: "Text is too short, {p0} bytes of at least {p1}",
    26: "Character not allowed at byte {p0}, expected {p1}",
    27: "Value {p0} is not one of {p1}",
    28: "Bad IPv4 address {p0}",
    29: "Bad MAC address {p0}",
    30: "Bad port or VLAN list {p0}",
    31: "Array has {p0} items, at most {p1} allowed",
    32: "Fields contradict each other: {p0}",
    33: "Serial must have {p0} bytes, has {p1}",
    34: "Text is not in obfuscated form",
    35: "Key {p0} is repeated",
    36: "Item {p0} is repeated",
}
INDEX_OF_TEXT = {text: index for index, text in ERROR_TEXTS.items()}
ACCESS_DENIED = 12


class ApiError(Exception):
    """Whatever goes wrong with the API."""


class TransportError(ApiError, ConnectionError):
    """There is no connection to the daemon, or it broke off, or what came over it is no answer."""


class TimeOut(ApiError, TimeoutError):
    """The answer did not come in time."""


@dataclasses.dataclass(frozen=True)
class Error:
    """One reason of a refusal."""

    index: int | None  # in the table of the API reference; None for a text that this module does not know
    key: str           # that text, with its parameters as {p0}, {p1}
    params: dict
    path: str          # what it is about: a route, a record, or the key path of a field ("servers.1.address")

    @property
    def text(self):
        """The text for people, with its parameters."""
        filled = re.sub(r"\{(\w+)\}", lambda name: _shown(self.params.get(name[1], name[0])), self.key)
        more = [_shown(value) for name, value in self.params.items() if f"{{{name}}}" not in self.key]
        return filled + (f" ({', '.join(more)})" if more else "")

    def __str__(self):
        return f"{self.path}: {self.text}" if self.path else self.text


class Refused(ApiError):
    """The daemon has refused a request."""

    def __init__(self, answer, path="", method=""):
        self.answer, self.path, self.method = answer, path, method
        self.errors = [_error(error) for error in answer.get("errors", [])]
        reasons = "; ".join(map(str, self.errors)) or "refused without a reason"
        super().__init__(f"{method} {path}: {reasons}".strip())


class NotLoggedIn(Refused):
    """No session was named, or one that is not known (any more): sessions end with the daemon."""


class Connection:
    """Carries texts, each ended by a NUL."""

    def __init__(self, host=HOST, port=PORT, patience=PATIENCE):
        self.patience = patience
        self.received = bytearray()
        try:
            self.socket = socket.create_connection((host, port), patience)
            self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        except OSError as error:
            raise TransportError(f"no connection to {host} port {port}: {error}") from error

    def close(self):
        self.socket.close()

    def send_text(self, text):
        """`text` is bytes without a NUL."""
        self._until(time.monotonic() + self.patience, lambda: self.socket.sendall(text + b"\0"))

    def receive_text(self):
        """The next text, without its NUL."""
        deadline = time.monotonic() + self.patience
        searched = 0
        while (end := self.received.find(b"\0", searched)) < 0:
            searched = len(self.received)
            data = self._until(deadline, lambda: self.socket.recv(1 << 20))
            if not data:
                self.close()
                raise TransportError("the daemon closed the connection")
            self.received += data
        text = bytes(self.received[:end])
        del self.received[:end + 1]
        return text

    def exchange(self, text):
        self.send_text(text)
        return self.receive_text()

    def _until(self, deadline, act):
        try:
            self.socket.settimeout(max(deadline - time.monotonic(), 1e-3))
            return act()
        except TimeoutError:
            self.close()
            raise TimeOut(f"the daemon did not answer within {self.patience:g} s") from None
        except OSError as error:
            self.close()
            raise TransportError(f"the connection broke off: {error}") from error


class Client:
    """A client of one daemon, connected from the start, with at most one session.

    `session_id` takes up a session that another program has opened; it is left open at the end. A session that login()
    has opened is closed with the object.
    """

    def __init__(self, host=HOST, port=PORT, patience=PATIENCE, session_id=""):
        self.address = host, port, patience
        self.session_id = session_id
        self.privilege = ""  # of the user who logged in: "viewer", "operator" or "administrator"
        self.connection = None
        self._has_logged_in = False
        self.connect()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def connect(self):
        """Takes a new connection in place of the one there is. The session outlives it."""
        if self.connection:
            self.connection.close()
        self.connection = Connection(*self.address)

    def close(self):
        """Ends the session, where login() has opened it, and the connection."""
        try:
            if self._has_logged_in:
                self.logout()
        except ApiError:
            pass  # the daemon is gone, and its sessions with it
        finally:
            self.connection.close()

    # Requests

    def ask(self, path, method, *, indices=(), **more):
        """The answer to a request as it came, also one that refuses it. `more`: data, config_type."""
        self.send(path, method, indices=indices, **more)
        return self.receive()

    def request(self, path, method, *, indices=(), **more):
        """The data of the answer, None where it has none. Raises Refused, also for an answer that names errors beside
        success, as that to a commit does."""
        answer = self.ask(path, method, indices=indices, **more)
        if answer["success"] and not answer.get("errors"):
            return answer.get("data")
        refusal = Refused(answer, path, method)
        has_session = bool(answer.get("session_id"))
        if not has_session and any((error.index, error.path) == (ACCESS_DENIED, "api_service") for error in refusal.errors):
            refusal = NotLoggedIn(answer, path, method)
        raise refusal

    def call(self, path, data=None, **more):
        """One of the utilities."""
        return self.request(path, "call", data=data, **more)

    def command(self, name, *indices, data=None):
        """command("reboot.ont", "3/1-8") does command.reboot.ont."""
        return self.request(f"command.{name}", "command", indices=indices, **({} if data is None else {"data": data}))

    def send(self, path, method, *, indices=(), **more):
        """The first half of ask()."""
        request = {"path": path, "method": method, **more}
        if self.session_id:
            request["session_id"] = self.session_id
        if indices:
            request["indices"] = [str(index) for index in indices]
        self.connection.send_text(json.dumps(request).encode())

    def receive(self):
        """The second half: the next answer."""
        text = self.connection.receive_text()
        try:
            answer = json.loads(text)
            if isinstance(answer["success"], bool):
                return answer
        except (ValueError, KeyError, TypeError):
            pass
        self.connection.close()
        raise TransportError(f"this is no answer: {text[:200]!r}")

    # Sessions

    def login(self, user, password=None, *, file=None, fd=None):
        """Opens a session. The password is given, or is the first line of a file that only its owner can read, or of
        what is read from a descriptor."""
        if [password, file, fd].count(None) != 2:
            raise ValueError("login() takes one of password, file and fd")
        if file is not None:
            password = _first_line(os.open(file, os.O_RDONLY | os.O_CLOEXEC), only_owners=str(file))
        elif fd is not None:
            password = _first_line(os.dup(fd))
        session_id, self.session_id = self.session_id, ""
        try:
            opened = self.request("auth", "auth", data={"user": user, "password": password})
        except ApiError:
            self.session_id = session_id
            raise
        self.session_id, self.privilege = opened["session_id"], opened["web_privilege"]
        self._has_logged_in = True
        return self.session_id

    def logout(self):
        try:
            self.request("unauth", "auth")
        finally:
            self.session_id, self.privilege, self._has_logged_in = "", "", False

    # Configuration

    def get(self, path, *indices, config=RUNNING):
        """What the path gives: a record, or an array of them, ascending. Of monitoring, what is there."""
        return self.request(path, "get", indices=indices, **_config(path, config))

    def set(self, path, data, *indices):
        """Writes a whole record to each of the indices: keys that are left out get their default."""
        return self.request(path, "set", indices=indices, data=data, config_type=CANDIDATE)

    def update(self, path, changes, *indices):
        """Changes some keys of a record, or of each of several, and leaves the others as the candidate has them."""
        if not indices:
            return self.set(path, {**self.get(path, config=CANDIDATE), **changes})
        for places, record in self.each(path, *indices, config=CANDIDATE):
            self.set(path, {**record, **changes}, *places)
        return None

    def delete(self, path, *indices):
        return self.request(path, "delete", indices=indices, config_type=CANDIDATE)

    def each(self, path, *ranges, config=RUNNING):
        """Yields ((index, ...), record) for each record of the ranges, ascending. With several levels one request goes out
        for each number of the first."""
        first, *others = (numbers(text) for text in ranges)
        for part in [[number] for number in first] if others else [first]:
            places = list(itertools.product(part, *others))
            records = self.get(path, ranges_of(part), *(ranges_of(level) for level in others), config=config)
            if len(records) != len(places):
                raise TransportError(f"get {path} gave {len(records)} records of {len(places)}")
            yield from zip(places, records)

    def commit(self):
        """Lets the candidate run, whole or not at all."""
        self.command("commit")

    def rollback(self):
        """Drops the candidate's changes."""
        self.command("rollback")

    def save(self):
        """Keeps what runs for the next start."""
        self.command("save")

    def default(self):
        """Makes the candidate the factory state."""
        self.command("default")


def numbers(text):
    """The numbers that a list of numbers and ranges names, ascending, each once: "1-3,7" gives [1, 2, 3, 7]."""
    found = set()
    for item in str(text).split(","):
        parts = re.fullmatch(r"([0-9]+)(?:-([0-9]+))?", item)
        first = int(parts[1]) if parts else 0
        last = int(parts[2] or first) if parts else 0
        if not 1 <= first <= last <= 4096:
            raise ValueError(f"{text!r} is no list of numbers and ranges from 1 to 4096 such as '1-4,7'")
        found.update(range(first, last + 1))
    return sorted(found)


def ranges_of(ascending):
    """The list that names ascending numbers: [1, 2, 3, 7] gives "1-3,7"."""
    runs = []
    for number in ascending:
        if runs and runs[-1][1] == number - 1:
            runs[-1][1] = number
        else:
            runs.append([number, number])
    return ",".join(str(first) if first == last else f"{first}-{last}" for first, last in runs)


def _config(path, config):
    return {"config_type": config} if path.startswith("configuration.") else {}


def _error(error):
    message = error["message"]
    return Error(INDEX_OF_TEXT.get(message["key"]), message["key"], message.get("params", {}), error["path"])


def _shown(value):
    return str(int(value)) if isinstance(value, float) and value.is_integer() else str(value)


def _first_line(descriptor, only_owners=None):
    """Of what a descriptor gives, which is closed then."""
    with open(descriptor, encoding="utf-8") as text:
        if only_owners and os.fstat(descriptor).st_mode & (stat.S_IRWXG | stat.S_IRWXO):
            raise PermissionError(f"{only_owners} can be read by others than its owner: chmod 600 {only_owners}")
        return text.readline().rstrip("\r\n")
