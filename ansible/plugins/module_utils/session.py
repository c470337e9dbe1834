"""What the modules have in common: the options of a session, the session, and how a failure is told."""

from __future__ import annotations

import contextlib
import time

from . import olt_api

RESTART_S = 10  # a daemon that has ended is started again within that
INTERVAL_S = 0.2

OPTIONS = {
    "host": {"type": "str", "default": olt_api.HOST},
    "port": {"type": "int", "default": olt_api.PORT},
    "user": {"type": "str", "required": True},
    "password": {"type": "str", "no_log": True},
    "password_file": {"type": "path", "no_log": False},
    "timeout": {"type": "float", "default": olt_api.PATIENCE},
}
RULES = {"mutually_exclusive": [("password", "password_file")], "required_one_of": [("password", "password_file")]}


@contextlib.contextmanager
def session(module):
    """A client that is logged in. What goes wrong with it ends the module with a report."""
    options = module.params
    try:
        with olt_api.Client(options["host"], options["port"], options["timeout"]) as client:
            log_in(client, options)
            yield client
    except olt_api.Refused as refusal:
        module.fail_json(msg=text_of(refusal), errors=errors_of(refusal))
    except (olt_api.ApiError, OSError) as error:
        module.fail_json(msg=str(error), errors=[])


def log_in(client, options):
    if options["password_file"]:
        client.login(options["user"], file=options["password_file"])
    else:
        client.login(options["user"], options["password"])


def reopen(client, options):
    """The session goes on over a new connection, or another one begins when the daemon has been started again."""
    deadline = time.monotonic() + RESTART_S
    while True:
        try:
            client.connect()
            break
        except olt_api.TransportError:
            if time.monotonic() > deadline:
                raise
            time.sleep(INTERVAL_S)
    try:
        client.get("configuration.CommonGCfg.hostname")
    except olt_api.NotLoggedIn:
        log_in(client, options)


def errors_of(refusal):
    """The reasons of a refusal, for programs."""
    return [{"path": error.path, "text": error.text, "index": error.index} for error in refusal.errors]


def text_of(refusal):
    """The reasons of a refusal, for people."""
    return "; ".join(map(str, refusal.errors)) or str(refusal)
