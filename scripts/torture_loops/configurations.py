"""Damaged databases, saved files of other releases, killed saves: what a start makes of them."""

import json
import os
import random
import re
import shutil
import zlib

from .olt import Olt, Process, require
from .processes import pause, rename

ONT = "configuration.ZebGCfg.pon.ont"
ALL_ONTS = ("1-2", "1-256")
PAGE = 4096


class Log:
    """What the daemon has logged since the object was made."""

    def __init__(self, olt):
        self.path = olt.root / "var/log/api-service.log"
        self.begin = self.path.stat().st_size if self.path.exists() else 0

    def text(self):
        with open(self.path, "rb") as log:
            log.seek(self.begin if self.begin <= os.fstat(log.fileno()).st_size else 0)  # it may have been rotated
            return log.read().decode()


def describe(client, text):
    """Gives all ONTs a description, and lets it run."""
    client.set(ONT, {"description": text}, *ALL_ONTS)
    client.commit()


def descriptions(client):
    """The different ones that the ONTs have, and how many ONTs there are."""
    found = re.findall(r'"description": "([^"]*)"', json.dumps(client.get(ONT, *ALL_ONTS)))
    return set(found), len(found)


def start(olt):
    """Both programs; the simulator opens the database first, and the daemon tells of it all the same."""
    return olt.start("--plant", "empty")


def stop(olt):
    olt.kill_daemon()
    olt.kill_simulator()


def damage(data, chance):
    at = chance.randrange(len(data))
    page = at // PAGE * PAGE
    kind = chance.randrange(7)
    if kind == 0:
        del data[at:]
    elif kind == 1:
        data[page:page + PAGE] = bytes(PAGE)
    elif kind == 2:
        data[page:page + PAGE] = chance.randbytes(PAGE)
    elif kind == 3:  # another page in its place
        other = chance.randrange(len(data) // PAGE) * PAGE
        data[page:page + PAGE] = data[other:other + PAGE]
    elif kind == 4:  # one of the two heads
        data[chance.randrange(2) * PAGE + chance.randrange(160)] ^= 1 << chance.randrange(8)
    elif kind == 5:  # the header of a page
        data[page + chance.randrange(64)] ^= 1 << chance.randrange(8)
    else:
        for position in range(at, min(at + chance.randrange(1, 64), len(data))):
            data[position] = chance.randrange(256)


def damaged_database(options, progress):
    """The database is damaged while nobody uses it: what ran runs on, or all that was saved, and the log says so."""
    chance = random.Random(options.seed)
    made_anew = 0
    with Olt(options.build) as olt:
        client = start(olt)
        describe(client, "saved")
        client.save()
        describe(client, "runs")
        stop(olt)
        whole = (olt.database / "data.mdb").read_bytes()
        for number in progress:
            data = bytearray(whole)
            damage(data, chance)
            shutil.rmtree(olt.database)
            olt.database.mkdir(0o700)
            (olt.database / "data.mdb").write_bytes(data)
            log = Log(olt)
            client = start(olt)
            is_new = "was damaged and is made anew" in log.text()
            made_anew += is_new
            found = descriptions(client)
            require(found == ({"saved" if is_new else "runs"}, 512), f"round {number}, made anew {is_new}: {found}")
            describe(client, "again")
            require(descriptions(client) == ({"again"}, 512), f"round {number}: a commit is lost")
            stop(olt)
    return f"{made_anew} made anew, the others were sound"


def foreign_records(chance):
    """Records as another release may have written them, with keys and values that this one does not have."""
    onts = {}
    for number in range(1, 513):
        ont = {"serial": [1, 1, 1, 1, 0, 0, number // 256, number % 256, 0, 0], "description": "file", "ont_template": 1}
        if chance.random() < 0.02:
            ont[f"key_{chance.randrange(3)}"] = chance.randrange(9)
        if chance.random() < 0.02:
            ont["ont_template"] = chance.randrange(60)
        if chance.random() < 0.02:
            ont["serial"][7] = chance.randrange(256)
        if chance.random() < 0.02:
            ont["description"] = "x" * chance.randrange(100)
        onts[str(number)] = ont
    records = {"ZebGCfg_pon_port_state": {"1": {"ont_limit": chance.randrange(64, 400)}}, "ZebGCfg_pon_ont": onts}
    if chance.random() < 0.3:
        records["CommonGCfg_system_oob"] = {"enabled": False}
    if chance.random() < 0.3:
        records["An_element_of_tomorrow"] = {"1": {}}
    return json.dumps(records, separators=(",", ":"))


def foreign_file(options, progress):
    """The saved file is of another release, and the first start is killed: what fits runs, and once saved is taken as is."""
    chance = random.Random(options.seed)
    with Olt(options.build) as olt:
        folder = olt.root / "configuration"
        for number in progress:
            shutil.rmtree(folder, ignore_errors=True)
            shutil.rmtree(olt.database, ignore_errors=True)
            folder.mkdir(0o700)
            records = foreign_records(chance)
            text = '{"format":"olt-config","version":1,"crc32":%d,"records":%s}' % (zlib.crc32(records.encode()), records)
            (folder / "save-config").write_text(text)
            loading = Process([olt.build / "simulator/olt_simulator", "--plant", "empty"], {"OLT_ROOT": str(olt.root)})
            pause(chance.uniform(0, 0.06))
            loading.kill()
            client = start(olt)
            serials = json.dumps(client.get(ONT, *ALL_ONTS)).count('"serial": [1, 1, 1, 1, ')
            require(serials > 256, f"round {number}: {serials} of 512 ONTs are left")
            client.save()
            stop(olt)
            originals = [file.read_text() for file in folder.glob("save-config.original-*")]
            require(originals == [text], f"round {number}: the original is lost")
            shutil.rmtree(olt.database)
            log = Log(olt)
            client = start(olt)
            require("left out" not in log.text() and "default" not in log.text(),
                    f"round {number}: a start refuses what was saved: {log.text()[:500]}")
            stop(olt)
    return ""


def killed_save(options, progress):
    """The daemon is killed while it saves: the file is the old one or the new one, and nothing else lies about."""
    chance = random.Random(options.seed)
    with Olt(options.build) as olt:
        client = start(olt)
        rename(client, "olt")
        client.save()
        describe(client, "saved")
        client.save()
        for number in progress:
            rename(client, f"olt-{number}")
            client.send("command.save", "command")
            pause(chance.uniform(0, 0.004))
            stop(olt)
            shutil.rmtree(olt.database)
            client = start(olt)
            found = descriptions(client)
            require(found == ({"saved"}, 512), f"round {number}: {found}")
            names = {file.name for file in (olt.root / "configuration").iterdir()}
            require(names == {"save-config", "save-config.previous", ".lock"}, f"round {number}: {names}")
    return ""


LOOPS = {"damaged-database": damaged_database, "foreign-file": foreign_file, "killed-save": killed_save}
