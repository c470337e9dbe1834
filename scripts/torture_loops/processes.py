"""Dead and stopped processes: readers, owners of locks, the daemon between a commit and its notices, peers."""

import os
import random
import select
import signal
import time

from .holders import READ_ONLY, FolderLock, LmdbUser
from .olt import Olt, olt_api, require

MIB = 1 << 20
PON_PORT = "configuration.ZebGCfg.pon.port_state"
HOSTNAME = "configuration.CommonGCfg.hostname"


def pause(seconds):
    """Any moment will do."""
    select.select([], [], [], seconds)


def rename(client, name):
    client.set(HOSTNAME, {"hostname": name})
    client.commit()


def size_of(olt):
    return os.path.getsize(olt.database / "data.mdb")


def dead_reader(options, progress):
    """Processes are killed while they read; writes go on, and the file stays small."""
    with Olt(options.build) as olt:
        client = olt.start("--plant", "empty")
        for number in progress:
            LmdbUser(olt.database, READ_ONLY).kill()
            for commit in range(8):
                rename(client, f"olt-{number}-{commit}")
        size = size_of(olt)
        require(size < 32 * MIB, f"the database has grown to {size / MIB:.1f} MiB")
        return f"{8 * options.rounds} commits, database {size / MIB:.1f} MiB"


def killed_simulator(options, progress):
    """olt_simulator is killed just after commits that concern every ONT."""
    chance = random.Random(options.seed)
    with Olt(options.build) as olt:
        client = olt.start("--onts", "512", "--configured", "512")
        for number in progress:
            client.set("configuration.CommonGCfg.profiles.profiles_ont.dba",
                       {"name": "x", "maximum_kbps": 64 * (number % 1000 + 1)}, "1")
            client.commit()
            pause(chance.uniform(0, 0.01))
            olt.kill_simulator()
            for commit in range(4):
                rename(client, f"olt-{number}-{commit}")
            olt.start_simulator()
        size = size_of(olt)
        require(size < 64 * MIB, f"the database has grown to {size / MIB:.1f} MiB")
        return f"database {size / MIB:.1f} MiB"


def stopped_owner(options, progress):
    """A process is stopped, then killed, while it holds the database's write lock or that of the saved file."""
    longest = 0.0
    with Olt(options.build) as olt:
        client = olt.start("--plant", "empty")
        rename(client, "olt")
        client.save()
        for number in progress:
            is_save = number % 4 == 3
            owner = FolderLock(olt.root / "configuration") if is_save else LmdbUser(olt.database, 0)
            owner.stop()
            begin = time.monotonic()
            act = [lambda: client.set(HOSTNAME, {"hostname": f"olt-{number}"}), client.commit, client.rollback, client.save]
            try:
                act[number % 4]()
                require(is_save, f"round {number}: success without the lock")
            except olt_api.Refused:
                pass
            longest = max(longest, time.monotonic() - begin)
            require(longest < 1, f"an answer took {longest:.2f} s")
            require(client.get(HOSTNAME)["hostname"], "the daemon does not read")
            owner.kill()
            rename(client, f"olt-{number}")
            client.save()
        return f"longest answer {longest:.2f} s"


def follows(olt, client):
    """The plant has the PON ports of the running configuration."""
    enabled = [port["enabled"] for port in client.get(PON_PORT, "1-16")]
    plant = [port["state"] != "DISABLED" for port in olt.truth()["pon_ports"]]
    require(plant == enabled, f"running {enabled}, plant {plant}")


def toggle(client, chance):
    port = chance.randrange(16)
    enabled = client.get(PON_PORT, str(port + 1))[0]["enabled"]
    client.set(PON_PORT, {"enabled": not enabled}, str(port + 1))


def killed_daemon(options, progress):
    """The daemon is killed around a commit, also between the database's commit and the notices of it."""
    chance = random.Random(options.seed)
    with Olt(options.build) as olt:
        olt.start_simulator("--plant", "empty")
        for _ in progress:
            olt.start_daemon()
            client = olt.log_in()
            follows(olt, client)
            client.rollback()
            toggle(client, chance)
            client.send("command.commit", "command")
            pause(chance.uniform(0, 0.0015))
            olt.kill_daemon()
        return ""


def commit_then_step(options, progress):
    """The plant's clock is stepped right after a commit: the whole step passes under the new configuration."""
    with Olt(options.build) as olt:
        client = olt.start("--onts", "16", "--clock-rate", "0")
        for number in progress:
            on, off = number % 2, (number + 1) % 2
            client.set(PON_PORT, {"enabled": True}, str(on + 1))
            client.set(PON_PORT, {"enabled": False}, str(off + 1))
            client.commit()
            olt.tell({"step_s": 3})  # a port that is switched on works after so long, and not a moment earlier
            states = [port["state"] for port in olt.truth()["pon_ports"][:2]]
            require((states[on], states[off]) == ("ACTIVE", "DISABLED"), f"pair {number} is late: {states}")
        return ""


def stopped_peer(options, progress):
    """olt_simulator is stopped for some commits, the first time for 4000, and goes on."""
    chance = random.Random(options.seed)
    with Olt(options.build) as olt:
        client = olt.start("--plant", "empty")
        for number in progress:
            olt.simulator.send(signal.SIGSTOP)
            for _ in range(4000 if number == 0 else chance.randrange(1, 4)):
                toggle(client, chance)
                client.commit()
            olt.simulator.send(signal.SIGCONT)
            follows(olt, client)
        return f"database {size_of(olt) / MIB:.1f} MiB"


LOOPS = {"dead-reader": dead_reader, "killed-simulator": killed_simulator, "stopped-owner": stopped_owner,
         "killed-daemon": killed_daemon, "commit-then-step": commit_then_step, "stopped-peer": stopped_peer}
