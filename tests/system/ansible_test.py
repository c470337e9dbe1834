#!/usr/bin/python3
"""The Ansible collection with real OLTs, each in a network of its own.

usage: tests/system/ansible_test.py [CASE...] BUILD-FOLDER
"""

import concurrent.futures
import contextlib
import ctypes
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(CHECKOUT / "scripts"))
from torture_loops.olt import Olt, isolate, olt_api  # noqa: E402

BUILD = sys.argv[-1]
ONT = "configuration.ZebGCfg.pon.ont"
HOSTNAME = "configuration.CommonGCfg.hostname"
SUBSCRIBERS = [{"ont": f"{port}/{ont}", "serial": f"SIMUA{port:03X}{ont:04X}", "line": f"L-{port:02}{ont:02}",
                "product": "fibre-300" if ont == 1 else "fibre-100"} for port in range(1, 11) for ont in range(1, 11)]
CLONE_NEWNET = 0x40000000
LIBC = ctypes.CDLL(None, use_errno=True)


def check(status):
    if status != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


class Network:
    """A network namespace with a loopback interface. What is started and connected inside of it has that network."""

    def __init__(self):
        with self._coming_back():
            check(LIBC.unshare(CLONE_NEWNET))
            subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
            self.descriptor = os.open("/proc/self/ns/net", os.O_RDONLY)

    @contextlib.contextmanager
    def _coming_back(self):
        own = os.open("/proc/self/ns/net", os.O_RDONLY)
        try:
            yield
        finally:
            check(LIBC.setns(own, CLONE_NEWNET))
            os.close(own)

    @contextlib.contextmanager
    def entered(self):
        with self._coming_back():
            check(LIBC.setns(self.descriptor, CLONE_NEWNET))
            yield

    def end(self, program):
        """Those in this network whose command line names it."""
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):  # it has ended
                if os.path.samestat(os.stat(self.descriptor), os.stat(process / "ns/net")) and \
                        program in (process / "cmdline").read_text():
                    os.kill(int(process.name), signal.SIGTERM)

    def interpreter(self):
        return f"nsenter --net=/proc/{os.getpid()}/fd/{self.descriptor} {sys.executable}"


class Site:
    """An OLT with the subscribers' ONTs, none of which is configured."""

    def __init__(self, test, name):
        self.name, self.network = name, Network()
        self.olt = test.enterContext(Olt(BUILD))
        with self.network.entered():
            self.client = test.enterContext(self.olt.start("--onts", "320", "--configured", "0", "--clock-rate", "0"))

    def host(self):
        return {"ansible_connection": "local", "ansible_python_interpreter": self.network.interpreter()}

    def configuration(self, config):
        """What a playbook may change."""
        return [self.client.get(HOSTNAME, config=config),
                self.client.get("configuration.CommonGCfg.profiles.profiles_ont.ont_template", "1-32", config=config),
                *self.client.each(ONT, "1-16", "1-32", config=config)]


class Collection(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """The collection as it is built and installed for users."""
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="ansible-", dir="/tmp"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.environment = {**os.environ, "ANSIBLE_HOME": str(cls.folder / "home"), "LC_ALL": "C.UTF-8",
                           "ANSIBLE_COLLECTIONS_PATH": str(cls.folder), "ANSIBLE_LOCAL_TEMP": str(cls.folder / "local"),
                           "ANSIBLE_REMOTE_TEMP": str(cls.folder / "remote"), "ANSIBLE_NOCOLOR": "1",
                           "ANSIBLE_CALLBACKS_ENABLED": "tree", "ANSIBLE_CALLBACK_TREE_DIR": str(cls.folder / "results")}
        for command in (["build", "--output-path", cls.folder, CHECKOUT / "ansible"],
                        ["install", "--offline", "-p", cls.folder, cls.folder / "xpon-olt-0.1.0.tar.gz"]):
            subprocess.run(["ansible-galaxy", "collection", *command], env=cls.environment, check=True, capture_output=True)

    def play(self, playbook, hosts, *options):
        """By host: the result of the last task, and the numbers of the recap. And what people see."""
        inventory = self.folder / "inventory.json"
        of_all = {"olt_password_file": str(self.password), "ansible_ssh_common_args": "-F none", "subscribers": SUBSCRIBERS}
        inventory.write_text(json.dumps({"olts": {"hosts": hosts, "vars": of_all}}))
        done = subprocess.run(["ansible-playbook", "-i", inventory, playbook, *options], env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
        recap = {host: {name: int(number) for name, number in re.findall(r"(\w+)=(\d+)", line)}
                 for host, line in re.findall(r"^(\S+) +: (ok=.*)$", done.stdout, re.M)}
        self.assertEqual(recap.keys(), hosts.keys(), done.stdout)
        return {host: json.loads((self.folder / "results" / host).read_text()) for host in hosts}, recap, done.stdout

    def task(self, site, module, *options, **arguments):
        """The result of a single task."""
        playbook = self.folder / "task.json"
        arguments = {"user": "admin", "password": "admin"} | arguments
        playbook.write_text(json.dumps([{"hosts": "olts", "gather_facts": False,
                                         "tasks": [{f"xpon.olt.{module}": arguments}]}]))
        return self.play(playbook, {site.name: site.host()}, *options)[0][site.name]

    def configure(self, site, *config, options=(), **more):
        return self.task(site, "olt_config", *options, config=config, **more)

    @property
    def password(self):
        file = self.folder / "password"
        file.write_text("admin\n")
        file.chmod(0o600)
        return file

    def test_fleet_comes_to_the_same_services_once(self):
        playbook = CHECKOUT / "ansible/playbooks/subscribers.yml"
        good, bad = Site(self, "good"), Site(self, "bad")
        before = {site: site.configuration("running") for site in (good, bad)}
        hosts = {"good": good.host(), "bad": {**bad.host(), "products": {
            "fibre-100": {"downstream_kbps": 100000}, "fibre-300": {"downstream_kbps": 9999999}}},
            "away": {"ansible_connection": "ssh", "ansible_host": "127.0.0.1", "ansible_port": 1}}

        def run(*options, changed):
            """What is told of the good one; the others are as ever."""
            results, recap, text = self.play(playbook, hosts, "--diff", *options)
            self.assertEqual([recap[host]["changed"] for host in hosts], [changed, 0, 0], text)
            self.assertEqual((recap["away"]["unreachable"], recap["bad"]["failed"]), (1, 1), text)
            self.assertIn("port 1: Connection refused", results["away"]["msg"])
            self.assertEqual((results["bad"]["element"], results["bad"]["errors"]), ("ZebGCfg.pon.ont.service", [
                {"path": "downstream_kbps", "index": 22, "text": "Value 9999999 is out of range 0 to 2488320"}]))
            for config in ("running", "candidate"):
                self.assertEqual(bad.configuration(config), before[bad])
            self.assertEqual(changed, text.count('+  serial: "SIMUA0010001"'), text)
            return results["good"]

        planned = run("--check", changed=1)
        for config in ("running", "candidate"):
            self.assertEqual(good.configuration(config), before[good])
        self.assertEqual(run(changed=1)["changes"], planned["changes"])
        onts = [record for _, record in good.client.each(ONT, "1-16", "1-32") if any(record["serial"])]
        self.assertEqual((len(onts), {ont["ont_template"] for ont in onts}), (len(SUBSCRIBERS), {20}))
        self.assertTrue((good.olt.root / "configuration/save-config").exists())
        self.assertFalse((bad.olt.root / "configuration/save-config").exists())
        again = run(changed=0)
        self.assertEqual((again["changes"], again["saved"]), ([], False))
        good.olt.tell({"step_s": 300})
        facts = self.task(good, "olt_facts", gather_subset=["onts", "config"])["ansible_facts"]
        self.assertEqual(len({ont["serial"] for ont in facts["olt_onts"]}), len(facts["olt_onts"]))
        self.assertGreater(sum(ont.get("state") == "OPERATIONAL" for ont in facts["olt_onts"]), len(SUBSCRIBERS) // 2)
        self.assertFalse(self.configure(good, *facts["olt_config"])["changed"])

    def test_one_task(self):
        site = Site(self, "olt")
        with self.subTest("a commit that is refused is taken back"):
            before = site.configuration("running")
            refused = self.configure(site, {"element": "ZebGCfg.pon.ont", "indices": "1/1",
                                            "record": {"serial": "SIMUA0010001", "ont_template": 31}})
            self.assertTrue(refused["rolled_back"])
            self.assertIn("pon.ont.1.1: Commit failed: Undefined template 31. All edits", refused["msg"])
            self.assertEqual(site.configuration("candidate"), before)
        with self.subTest("a task that is interrupted is taken back"):
            many = [{"element": ONT, "indices": f"{port}/{ont}", "record": {"description": f"House {port}/{ont}"}}
                    for port in range(1, 17) for ont in range(1, 129)]
            with concurrent.futures.ThreadPoolExecutor(1) as pool:
                task = pool.submit(self.configure, site, *many)
                while not site.client.get(ONT, 1, 1, config="candidate")[0]["description"]:
                    self.assertFalse(task.done())
                site.network.end("AnsiballZ_olt_config")
                self.assertIn("ended by SIGTERM. All edits", task.result()["msg"])
            self.assertEqual(site.configuration("candidate"), before)
        with self.subTest("edits of others are neither committed nor lost"):
            site.client.set(HOSTNAME, {"hostname": "of-others"})
            wish = {"element": "CommonGCfg.system.ntp", "record": {"min_poll": "5"}}
            self.assertIn("edits of somebody else, CommonGCfg.hostname", self.configure(site, wish)["msg"])
            self.assertEqual(site.client.get(HOSTNAME, config="candidate"), {"hostname": "of-others"})
            self.assertTrue(self.configure(site, wish, pending="discard")["changed"])
            self.assertEqual(site.client.get(HOSTNAME), {"hostname": "olt"})
        with self.subTest("words of YAML, ranges with exceptions, an operator, secrets"):
            wishes = [{"element": "ZebGCfg.pon.ont", "indices": "1-2/1-8", "record": {"upstream_fec": False}},
                      {"element": "ZebGCfg.pon.ont", "indices": "2/3",
                       "record": {"serial": "SIMUA0020003", "password": "geheim7"}}]
            done = self.configure(site, *wishes, user="operator", password="operator")
            self.assertEqual([row["indices"] for row in done["changes"]], ["1/1-8", "2/1-2,4-8", "2/3"], done)
            self.assertEqual(done["changes"][2]["after"],
                             {"serial": "SIMUA0020003", "password": "(hidden), new", "upstream_fec": "off"})
            self.assertNotIn("geheim7", json.dumps(done))
            self.assertFalse(self.configure(site, *wishes)["changed"])
        with self.subTest("an ONT is gone with its services"):
            site.client.set(f"{ONT}.service", {"subscriber_id": "x"}, 2, 3, 4)
            site.client.commit()
            gone = {"element": ONT, "indices": "2/3", "state": "absent"}
            self.assertEqual(len(self.configure(site, gone, user="operator", password="operator")["changes"]), 2)
            self.assertEqual(site.client.get(f"{ONT}.service", 2, 3, 4)[0]["subscriber_id"], "")
        with self.subTest("commands"):
            path = "command.reconfigure.pon_port"
            commands = [{"path": "monitoring.constants"}, {"path": path, "indices": ["1-2"]}]
            for options, is_done in ((["--check"], False), ([], True)):
                log = (site.olt.root / "var/log/api-service-changes.log").read_text().count(path)
                done = self.task(site, "olt_command", *options, commands=commands)
                self.assertEqual((done["changed"], done["responses"][0]["PON_PORT_COUNT"]), (True, 16))
                count = (site.olt.root / "var/log/api-service-changes.log").read_text().count(path)
                self.assertEqual(count > log, is_done)
            refused = self.task(site, "olt_command", commands=[{"path": "command.reboot"}], user="viewer", password="viewer")
            self.assertIn("command.reboot: api_service: Access denied", refused["msg"])
        for wish, text in (
                ({"element": "ZebGCfg.pon.ont", "indices": "17/1"}, "17/1: this OLT has none; the last one is 16/256"),
                ({"element": "ZebGCfg.pon.ont", "indices": "1"}, "PON port/ONT"),
                ({"element": "CommonGCfg.hostnam"}, "has no element"),
                ({"element": "CommonGCfg.hostname", "record": {"name": 1}}, "name: there is no such key; there are hostname"),
                ({"element": "CommonGCfg.system.fan_speed", "record": {"mode": "manual"}}, "can be read only")):
            with self.subTest(text):
                self.assertIn(text, self.configure(site, wish)["msg"])

    def test_defaults_are_those_of_the_daemon(self):
        sys.path.append(str(self.folder))
        from ansible_collections.xpon.olt.plugins.module_utils import elements
        site = Site(self, "olt")
        for name, element in elements.ELEMENTS.items():
            path, place = elements.PREFIX + name, ["1"] * len(element.levels)
            if not element.is_read_only:
                site.client.set(path, {}, *place)
            record = site.client.get(path, *place, config="candidate")
            self.assertEqual(record[0] if place else record, element.record, name)
        required = {"servers": {"address": "x"}, "communities": {"name": "x"},
                    "users": {"name": "x", "security_level": "no_auth_no_priv"},
                    "trap_targets": {"name": "x", "address": "192.0.2.1"}}
        for name, element in elements.ELEMENTS.items():
            for key in element.record.keys() & elements.ITEMS.keys():
                site.client.set(elements.PREFIX + name, {key: [required.get(key, {})]}, *["1"] * len(element.levels))
                record = site.client.get(elements.PREFIX + name, *["1"] * len(element.levels), config="candidate")
                record = record[0] if element.levels else record
                self.assertEqual(record[key][0], elements.ITEMS[key] | required.get(key, {}), key)


if __name__ == "__main__":
    isolate(BUILD)
    unittest.main(argv=sys.argv[:-1])
