"""The OLTs, floors and clients that the rows of scripts/bench measure with."""

import collections
import ctypes
import json
import os
import pathlib
import subprocess

from torture_loops.olt import Broken, Olt, olt_api

# Two OLTs, alike but for their size. Their clocks stand, so that an answer stays the same to the byte.
OLTS = {"small": ("--plant", "full", "--onts", "16", "--configured", "16", "--clock-rate", "0"),
        "large": ("--plant", "full", "--clock-rate", "0")}

CLONE_NEWNET = 0x40000000
LIBC = ctypes.CDLL(None, use_errno=True)

SESSION = "SESSION"  # stands for the session's id in the text of a request

# What is measured: `clients` that repeat a sample, a tuple of one request or several, each sent after the answer of the
# one before. `floor`: None for the daemon, else kind and sending of a floor. `beside`: number and sample of other
# clients that keep the same server busy.
Run = collections.namedtuple("Run", "sample clients olt floor beside", defaults=(1, "large", None, None))


class Unmeasurable(Exception):
    """Why a row has no figures."""


class RunningOlt:
    """Simulator and daemon, the session of a client, and the floors beside them."""

    def __init__(self, build, options):
        self.olt = Olt(build)
        self.client = self.olt.start(*options)
        self.network = os.open("/proc/self/ns/net", os.O_RDONLY)
        self.known = {}  # sample -> its answers
        self.floors = {}  # kind, sending and document -> process and port

    def close(self):
        for floor, _ in self.floors.values():
            floor.kill()
            floor.wait()
            floor.stdout.close()
        self.olt.__exit__()
        os.close(self.network)

    def restart_daemon(self):
        self.olt.kill_daemon()
        self.olt.start_daemon()
        self.client = self.olt.log_in()
        self.known = {}

    @property
    def daemon(self):
        return self.olt.daemon.child.pid

    def text_of(self, request):
        return request.replace(SESSION, self.client.session_id).encode()

    def answers(self, sample):
        """What the daemon says to its requests."""
        if sample not in self.known:
            self.known[sample] = [self.client.connection.exchange(self.text_of(request)) for request in sample]
            for answer in self.known[sample]:
                if not json.loads(answer)["success"]:
                    raise Unmeasurable(f"{sample} gives {answer[:500]}")
        return self.known[sample]


class Machine:
    """Starts what is asked for, once, and measures."""

    def __init__(self, build, scratch, seconds, echoes):
        self.build, self.scratch = pathlib.Path(build).resolve(), scratch
        self.seconds = seconds  # that a run takes
        self.echoes = echoes  # requests after which a daemon's memory is to be what it was
        self.olts = {}
        self.has_networks = True

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for olt in self.olts.values():
            olt.close()

    def olt(self, name):
        """The running OLT, in whose network this program and its children are from now on."""
        if name not in self.olts:
            if self.olts:
                self.make_room()
            try:
                self.olts[name] = RunningOlt(self.build, OLTS[name])
            except (Broken, olt_api.ApiError, OSError) as fault:
                raise Unmeasurable(fault) from fault
        if self.has_networks:
            LIBC.setns(self.olts[name].network, CLONE_NEWNET)
        return self.olts[name]

    def make_room(self):
        """The daemon's port is one in each network. Where a second network cannot be had, one OLT runs at a time."""
        self.has_networks = self.has_networks and LIBC.unshare(CLONE_NEWNET) == 0
        if self.has_networks:
            subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
        else:
            self.olts.popitem()[1].close()

    def floor(self, olt, kind, sending, document):
        """Process id and port of a floor that was given a document to answer with."""
        key = kind, sending, document
        if key not in olt.floors:
            path = self.scratch / "document"
            path.write_bytes(document)
            process = subprocess.Popen([self.build / "bench/bench_floor", kind, sending, path], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.PIPE)
            olt.floors[key] = process, int(process.stdout.readline() or 0)
        process, port = olt.floors[key]
        return process.pid, port

    def server(self, olt, run):
        """Process id and port of the daemon or the floor, and how many bytes each sample is to bring."""
        answers = olt.answers(run.sample)
        size = sum(len(answer) + 1 for answer in answers)
        if not run.floor:
            return olt.daemon, olt_api.PORT, size
        pid, port = self.floor(olt, *run.floor, answers[0])
        request = olt.text_of(run.sample[0])
        answer = olt_api.Connection(port=port).exchange(request)
        if answer != (request if run.floor[0] == "echo" else answers[0]):
            raise Unmeasurable(f"the floor {run.floor} does not answer as the daemon does: {answer[:500]}")
        return pid, port, len(answer) + 1

    def measure(self, run):
        """What bench_load found, with `cpu_us`, which a sample took of the server's processor time."""
        olt = self.olt(run.olt)
        pid, port, size = self.server(olt, run)
        seconds = self.seconds * (4 if run.beside else 1)  # those beside leave time for few samples
        command = [self.build / "bench/bench_load", str(port), str(int(seconds * 1000))]
        for clients, sample in [(run.clients, run.sample), *([run.beside] if run.beside else [])]:
            path = self.scratch / f"sample{len(command)}"
            path.write_bytes(b"".join(olt.text_of(request) + b"\n" for request in sample))
            command += [str(clients), path]
        before = cpu_seconds(pid)
        done = subprocess.run(command, check=False, capture_output=True, text=True)
        if done.returncode != 0:
            raise Unmeasurable(done.stderr.strip())
        found = json.loads(done.stdout.splitlines()[0])
        if found["bytes"] != found["samples"] * size:
            raise Unmeasurable(f"{found['samples']} answers of {size} bytes have {found['bytes']} bytes; some are errors")
        return {**found, "sample_bytes": size, "cpu_us": (cpu_seconds(pid) - before) * 1e6 / found["samples"]}


def cpu_seconds(pid):
    """Time that all threads of a process have had a processor."""
    return sum(int(path.read_text().split()[0]) for path in pathlib.Path(f"/proc/{pid}/task").glob("*/schedstat")) / 1e9
