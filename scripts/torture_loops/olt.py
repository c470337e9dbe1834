"""One OLT of real processes, treated without mercy: what every loop of scripts/torture works with, and scripts/bench."""

import json
import os
import pathlib
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile

CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(CHECKOUT / "client/python"))
import olt_api  # noqa: E402

PATIENCE = 30  # seconds, for what takes a second on a busy machine


class Broken(Exception):
    """What a loop is there to find."""


def require(condition, text):
    if not condition:
        raise Broken(text)


def isolate(*folders):
    """Runs this program once more by scripts/isolated, where it still sees the checkout and these folders."""
    if "IS_ISOLATED" not in os.environ:
        here = map(os.path.abspath, (CHECKOUT, *folders))
        os.execv(CHECKOUT / "scripts/isolated", ["isolated", *here, "--", sys.executable, *sys.argv])


class Process:
    """Killed with the object."""

    def __init__(self, command, environment):
        self.child = subprocess.Popen([str(word) for word in command], env={**os.environ, **environment},
                                      stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.pidfd = os.pidfd_open(self.child.pid)

    def send(self, number):
        signal.pidfd_send_signal(self.pidfd, number)

    def kill(self):
        self.send(signal.SIGKILL)
        self.child.wait(PATIENCE)
        self.child.stdout.close()
        os.close(self.pidfd)

    def is_running(self, wait_s=0.0):
        """Waits for its end for a while."""
        return not select.select([self.pidfd], [], [], wait_s)[0]


class Olt:
    """A fresh OLT_ROOT below /tmp, gone with the object."""

    def __init__(self, build):
        self.build = pathlib.Path(build).resolve()
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="torture-", dir="/tmp"))
        subprocess.run([CHECKOUT / "scripts/prepare-root", self.root, self.build], check=True)
        self.notify = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.notify.bind(str(self.root / "run/notify"))
        self.notify.settimeout(PATIENCE)
        self.simulator = self.daemon = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in (self.daemon, self.simulator):
            if process:
                process.kill()
        self.notify.close()
        shutil.rmtree(self.root, ignore_errors=True)

    @property
    def database(self):
        return self.root / "run/cfgdb"

    def start_simulator(self, *options):
        self.simulator = Process([self.build / "simulator/olt_simulator", *options], {"OLT_ROOT": str(self.root)})
        said = []
        for line in self.simulator.child.stdout:
            if line == b"olt_simulator is ready\n":
                return
            said.append(line)
        require(False, f"olt_simulator does not start: {said}")

    def start_daemon(self):
        lines = (self.root / "etc/api_service.env").read_text().splitlines()
        self.daemon = Process([self.build / "api_service/api_service"], dict(line.split("=", 1) for line in lines))
        text = ""
        while "READY=1" not in text:
            text = self.notify.recv(65536).decode()
            require("failed" not in text and "Error" not in text, f"api_service does not start: {text}")

    def log_in(self):
        """A session of the administrator. The daemon says that it is ready just before it listens."""
        while True:
            try:
                client = olt_api.Client(patience=PATIENCE)
            except olt_api.TransportError:
                require(self.daemon.is_running(0.002), "api_service has ended")
            else:
                client.login("admin", "admin")
                return client

    def start(self, *simulator_options):
        self.start_simulator(*simulator_options)
        self.start_daemon()
        return self.log_in()

    def kill_daemon(self):
        self.daemon.kill()
        self.daemon = None

    def kill_simulator(self):
        self.simulator.kill()
        self.simulator = None

    def tell(self, command):
        """The simulator's answer to a command."""
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as control:
            control.settimeout(PATIENCE)
            control.connect(str(self.root / "run/control.sock"))
            control.sendall(json.dumps(command).encode() + b"\n")
            text = b""
            while not text.endswith(b"\n"):
                text += control.recv(1 << 20)
        answer = json.loads(text)
        require(answer["ok"], f"{command}: {answer}")
        return answer

    def truth(self):
        """What the simulator says of its plant."""
        return self.tell({"state": "all"})
