"""What is left of passwords in the daemon's memory."""

import json
import os
import re

from .olt import Olt, require


def memory_of(pid):
    """What the process may write, part by part."""
    with open(f"/proc/{pid}/maps") as maps, open(f"/proc/{pid}/mem", "rb", 0) as memory:
        for line in maps:
            begin, end, access = re.match(r"(\w+)-(\w+) (\S+)", line).groups()
            if access.startswith("rw"):
                try:
                    memory.seek(int(begin, 16))
                    yield memory.read(int(end, 16) - int(begin, 16))
                except (OSError, ValueError):
                    pass  # such as a device's


def traces(options, progress):
    """Logins with a wrong password, in any pieces, every other one cut short of being JSON; nothing is left in memory.
    Needs root."""
    require(os.geteuid() == 0, "only root may look at the daemon's memory")
    tail = "-tail-4711-and-more"
    password = "Wrong-pass" + 40 * "." + tail  # the beginning of a freed block is overwritten anyway
    with Olt(options.build) as olt:
        client = olt.start("--plant", "empty")
        for number in progress:
            data = {"user": "admin", "password": password, "more": [password] * 100}
            text = json.dumps({"path": "auth", "method": "auth", "data": data})
            request = text[:len(text) - number % 2].encode() + b"\0"
            for part in (request[:number % len(request)], request[number % len(request):]):
                client.connection.socket.sendall(part)
            require(not client.receive()["success"], "a wrong password was accepted")
        client.ask("test.echo", "echo")  # the request before is done with, not only answered
        pid = olt.daemon.child.pid
        require(any(b"API-SERV" in part for part in memory_of(pid)), "the memory cannot be read")
        left = sum(part.count(tail.encode()) for part in memory_of(pid))
        require(left == 0, f"{left} copies of the password are left")
        return "no copy in memory"


LOOPS = {"password-traces": traces}
