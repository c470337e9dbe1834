"""What scripts/bench measures: one row a class of requests, with the goals of its figures."""

import collections
import json
import pathlib

from bench_rows.machine import SESSION, Run

# `measure(machine)` gives what one round found, figure by figure; `goals` has the figure's Goal, or None.
Row = collections.namedtuple("Row", "name title measure goals")


class Goal(collections.namedtuple("Goal", "sign value")):
    def __str__(self):
        return f"{self.sign} {self.value}"

    def holds(self, value):
        return value <= self.value if self.sign == "<=" else value >= self.value


def at_most(value):
    return Goal("<=", value)


def at_least(value):
    return Goal(">=", value)


def request(path, method="get", *indices, **more):
    """In the session of an administrator."""
    more.update({"indices": indices} if indices else {})
    return json.dumps({"session_id": SESSION, "path": path, "method": method, **more})


def configuration(element, *indices):
    return (request("configuration." + element, "get", *indices, config_type="running"),)


def edit(element, record, *indices):
    return (request("configuration." + element, "set", *indices, config_type="candidate", data=record),
            request("command.commit", "command"))


def edit_ont(description):
    """Of ONT 1/1 as the plant has configured it."""
    return edit("ZebGCfg.pon.ont", {"serial": [83, 73, 77, 85, 160, 1, 0, 1, 0, 0], "enabled": True, "ont_template": 2,
                                    "description": description}, "1", "1")


COUNTERS = "monitoring.interface.ont.counters.ont_side."
ECHO = (json.dumps({"path": "test.echo", "method": "echo", "data": {"text": "How long does it take?", "number": 1}}),)
HOST_NAME = configuration("CommonGCfg.hostname")
ONE_ONT = configuration("ZebGCfg.pon.ont", "1", "1")
ALL_ONTS = configuration("ZebGCfg.pon.ont", "1-16", "1-256")
EIGHTH_OF_ONTS = configuration("ZebGCfg.pon.ont", "1-2", "1-256")
# As long as the plant's own texts, so that no other answer changes its size.
TWO_HOST_NAMES = edit("CommonGCfg.hostname", {"hostname": "two"}) + edit("CommonGCfg.hostname", {"hostname": "one"})
TWO_ONTS = edit_ont("ONT two") + edit_ont("ONT one")
STATE = (request("monitoring.interface.ont.state"),)
LEASES = (request("monitoring.ip.dhcp.sessions"),)
ADDRESSES = (request("monitoring.mac"),)
SMALLEST_COUNTERS = (request(COUNTERS + "gal_ethernet_performance_monitoring_history_data", "get", "1-16"),)
LARGEST_COUNTERS = (request(COUNTERS + "ethernet_frame_extended_performance_monitoring", "get", "1-16"),)


def against(name, title, run, floor, **goals):
    """Ratios of the daemon's figures to a floor's. `goals`: p50_us, p99_us or per_s, each with its Goal."""
    def measure(machine):
        ours, floors = machine.measure(run), machine.measure(run._replace(floor=(floor, "one")))
        return {f"{key} / {floor}": ours[key] / floors[key] for key in (*goals, "cpu_us")}
    return Row(name, title, measure, {**{f"{key} / {floor}": goal for key, goal in goals.items()}, f"cpu_us / {floor}": None})


def of_two(name, title, first, second, figures):
    """`figures`: figure -> how it follows from what was found of two runs, and its Goal."""
    def measure(machine):
        found = machine.measure(first), machine.measure(second)
        return {figure: follows(*found) for figure, (follows, _) in figures.items()}
    return Row(name, title, measure, {figure: goal for figure, (_, goal) in figures.items()})


def milliseconds(name, title, run, goal, parts=1):
    """`parts`: how many of what the title names are in the run's sample."""
    return Row(name, title, lambda machine: {"p50, ms": machine.measure(run)["p50_us"] / 1000 / parts}, {"p50, ms": goal})


def p50_ratio(one, other):
    return one["p50_us"] / other["p50_us"]


def per_byte(one, other):
    return p50_ratio(one, other) / (one["sample_bytes"] / other["sample_bytes"])


def memory(machine):
    """Of a daemon that has just been started on 4096 ONTs."""
    olt = machine.olt("large")
    olt.restart_daemon()
    process = pathlib.Path(f"/proc/{olt.daemon}")

    def megabytes(key):
        return int((process / "status").read_text().split(key + ":")[1].split()[0]) * 1024 / 1e6

    def peak(sample):
        """As far as this machine allows a peak to be forgotten; else it is that since the start, which is lower."""
        try:
            (process / "clear_refs").write_text("5")
        except PermissionError:
            pass
        olt.client.connection.exchange(olt.text_of(sample[0]))
        return megabytes("VmHWM")

    found = {"idle, MB": megabytes("VmRSS"), "peak in ONT records, MB": peak(ALL_ONTS)}
    found["after ONT records, MB"] = megabytes("VmRSS")
    found["peak in largest counters, MB"] = peak(LARGEST_COUNTERS)
    echoes = Run(ECHO, clients=64)
    machine.measure(echoes)
    before, number = megabytes("VmRSS"), 0
    while number < machine.echoes:
        number += machine.measure(echoes)["samples"]
    found["growth in a million echoes, MB"] = (megabytes("VmRSS") - before) * 1e6 / number
    return found


def sending(name, title, document, clients, ways):
    """Ways to bring a text and its NUL to clients, each against a single call."""
    def measure(machine):
        run = Run(document, clients, floor=("text", "one"))
        floor = machine.measure(run)
        return {f"per_s {way} / one": machine.measure(run._replace(floor=("text", way)))["per_s"] / floor["per_s"]
                for way in ways}
    return Row(name, title, measure, {f"per_s {way} / one": None for way in ways})


WAYS = ("gathered", "two", "cork", "more", "more-nodelay", "more-pushed")
READER = Run(ALL_ONTS)
SMALL_ELEMENTS = (("host name", HOST_NAME), ("one ONT", ONE_ONT))
EDITS = (("commit a host name", TWO_HOST_NAMES), ("commit an ONT", TWO_ONTS))
ROWS = [
    Row("P6", "resident memory, 4096 ONTs", memory,
        {"idle, MB": at_most(8), "after ONT records, MB": at_most(12), "peak in ONT records, MB": at_most(20),
         "peak in largest counters, MB": at_most(32), "growth in a million echoes, MB": at_most(0.5)}),
    against("P1", "echo, 1 client", Run(ECHO), "json", p50_us=at_most(1.05), p99_us=at_most(1.2)),
    against("P1", "echo, 1 client", Run(ECHO), "echo", p50_us=None),
    *(against("P2", f"echo, {clients} clients", Run(ECHO, clients), "json", per_s=at_least(0.9)) for clients in (8, 64, 512)),
    *(against("P3", f"{title}, {olt} OLT", Run(sample, olt=olt), "document", p50_us=at_most(1.05))
      for olt in ("small", "large") for title, sample in SMALL_ELEMENTS),
    *(of_two("P3", f"{title}, large / small OLT", Run(sample), Run(sample, olt="small"), {"p50": (p50_ratio, at_most(1.05))})
      for title, sample in SMALL_ELEMENTS),
    against("P4", "4096 ONT records", READER, "copy", p50_us=at_most(0.12)),
    against("P4", "4096 ONT records", READER, "text", p50_us=None),
    of_two("P4", "4096 / 512 ONT records, per byte", READER, Run(EIGHTH_OF_ONTS), {"p50": (per_byte, at_most(1.2))}),
    *(milliseconds("P5", f"{title}, {olt} OLT", Run(sample, olt=olt), at_most(0.3), parts=2)
      for olt in ("small", "large") for title, sample in EDITS),
    *(of_two("P5", f"{title}, large / small OLT", Run(sample), Run(sample, olt="small"), {"p50": (p50_ratio, at_most(1.3))})
      for title, sample in EDITS),
    against("P7", "state of 4096 ONTs", Run(STATE), "copy", p50_us=at_most(0.15)),
    of_two("P7", "state of 4096 ONTs / their records", Run(STATE), READER, {"p50 per byte": (per_byte, at_most(1.2))}),
    against("P7", "leases", Run(LEASES), "copy", p50_us=at_most(0.15)),
    against("P7", "learned addresses", Run(ADDRESSES), "copy", p50_us=at_most(0.15)),
    milliseconds("P7", "smallest counters", Run(SMALLEST_COUNTERS), at_most(80)),
    milliseconds("P7", "largest counters", Run(LARGEST_COUNTERS), at_most(200)),
    of_two("P8", "echo beside two readers of 4096 ONTs", Run(ECHO, beside=(2, ALL_ONTS)), READER,
           {"(p99 - 1 ms) / p50 of a reader alone": (lambda echo, reader: (echo["p99_us"] - 1000) / reader["p50_us"],
                                                     at_most(2))}),
    *(sending("sending", f"host name, {clients} clients", HOST_NAME, clients, WAYS) for clients in (1, 64)),
    *(sending("sending", f"4096 ONT records, {clients} clients", ALL_ONTS, clients, WAYS) for clients in (1, 8)),
]
