#!/usr/bin/python3
"""exporter/olt_exporter with real processes, promtool and Prometheus' text format.

usage: tests/system/exporter_test.py [CASE...] BUILD-FOLDER
"""

import concurrent.futures
import pathlib
import re
import signal
import socket
import subprocess
import sys
import time
import unittest
import urllib.error
import urllib.request

sys.dont_write_bytecode = True
CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(CHECKOUT / "scripts"))
from torture_loops.olt import Olt, PATIENCE, Process, isolate, olt_api  # noqa: E402

BUILD = pathlib.Path(sys.argv[-1]).resolve()
ADDRESS = "127.0.0.1:9888"
ONTS = 64
SAMPLE = re.compile(r'^(\w+)(?:\{(.*)\})? (\S+)$')


def fetch(path="/metrics"):
    with urllib.request.urlopen(f"http://{ADDRESS}{path}", timeout=PATIENCE) as answer:
        return answer.read().decode()


def samples_of(text):
    """{name: {(value of label, ...): value}}"""
    samples = {}
    for name, labels, value in (SAMPLE.match(line).groups() for line in text.splitlines() if line[0] != "#"):
        values = tuple(re.findall(r'"((?:[^"\\]|\\.)*)"', labels or ""))
        assert values not in samples.setdefault(name, {}), f"{name}{values} is there twice"
        samples[name][values] = float(value)
    return samples


class Exporter(unittest.TestCase):
    def setUp(self):
        self.olt = self.enterContext(Olt(BUILD))

    def start(self, *options, plant=("--onts", str(ONTS), "--configured", str(ONTS), "--clock-rate", "0"), password="viewer"):
        self.admin = self.enterContext(self.olt.start(*plant))
        self.start_exporter(*options, password=password)

    def start_exporter(self, *options, password="viewer"):
        self.password = self.olt.root / "password"
        self.password.touch(0o600)
        self.password.write_text(password + "\n")
        self.exporter = Process([BUILD / "exporter/olt_exporter", "--listen", ADDRESS, "--password-file", self.password,
                                 "--interval-ms", "0", *options], {})
        self.addCleanup(lambda: self.exporter.child.returncode is None and self.exporter.kill())
        self.assertEqual(self.exporter.child.stdout.readline(), b"olt_exporter listens on port 9888\n")

    def scrape(self):
        return samples_of(fetch())

    def test_every_metric_is_well_formed_documented_and_true(self):
        self.start("--collectors", ",".join(self.collectors()), plant=("--onts", "64", "--configured", "48", "--clock-rate", "0"))
        text = fetch()
        check = subprocess.run(["promtool", "check", "metrics"], input=text, capture_output=True, text=True, check=False)
        self.assertEqual((check.returncode, check.stdout, check.stderr), (0, "", ""))
        page = (CHECKOUT / "docs/monitoring.md").read_text()
        documented = dict(re.findall(r"^\| `(\w+)` \| (gauge|counter) \|", page, re.M))
        self.assertEqual(dict(re.findall(r"^# TYPE (\w+) (\w+)$", text, re.M)), documented)
        found = samples_of(text)
        self.assertEqual(set(found["olt_exporter_collector_success"].values()), {1})
        # Against what the OLT tells others, and what the simulator knows.
        system = self.admin.get("monitoring.system")
        self.assertEqual(found["olt_memory_size_bytes"][()], system["ram"]["total"] * 1024 * 1024)
        self.assertEqual(found["olt_fan_rpm"][("1",)], system["fans"][0]["rate_rps"] * 60)
        self.assertEqual(found["olt_info"], {(*system["factory_info"].values(), *(system["device_info"][key] for key in (
            "hostname", "active_fw", "inactive_fw"))): 1})
        days, clock = re.fullmatch(r"(?:(\d+) days?, )?(.*)", system["device_info"]["uptime"]).groups()
        seconds = int(days or 0) * 86400 + sum(int(part) * unit for part, unit in zip(clock.split(":"), (3600, 60, 1)))
        self.assertEqual(found["olt_uptime_seconds"][()], seconds)
        onts = self.admin.get("monitoring.interface.ont.state")
        states = {(str(ont["cfg_port"]), str(ont["cfg_ont_id"])): ont for ont in onts if "cfg_port" in ont}
        self.assertEqual(len(states), 48)
        self.assertEqual({key[:2]: up for key, up in found["olt_ont_up"].items()},
                         {key: float(ont.get("state") == "OPERATIONAL") for key, ont in states.items()})
        operational = {key for key, up in found["olt_ont_up"].items() if up}
        for metric in ("olt_ont_received_power_dbm", "olt_ont_receive_bytes_total", "olt_ont_fec_codewords_total",
                       "olt_ont_interval_fec_corrected_codewords", "olt_ont_interval_lost_packets"):
            self.assertEqual(set(found[metric]), operational, metric)  # of the others there is nothing, not 0
        key = sorted(operational)[0]
        self.assertEqual(found["olt_ont_distance_meters"][key], states[key[:2]]["ont_info"]["distance"])
        self.assertRegex(key[2], "^[A-Z]{4}[0-9A-F]{8}$")
        self.assertEqual(sum(found["olt_pon_port_unclaimed_onts"].values()), sum("cfg_port" not in ont for ont in onts))
        self.assertEqual(sum(found["olt_pon_port_onts"].values()), 48)
        macs = [entry for entry in self.admin.get("monitoring.mac") if entry["ont"]]
        self.assertEqual(sum(found["olt_pon_port_mac_addresses"].values()), len(macs))
        self.assertEqual(fetch("/-/healthy"), "Healthy.\n")
        self.assertIn("/metrics", fetch("/"))
        self.assertRaises(urllib.error.HTTPError, fetch, "/metrics/more")

    @staticmethod
    def collectors():
        source = (CHECKOUT / "exporter/collection.hpp").read_text()
        return re.findall(r'Collector::\w+,\s*"(\w+)"', source)

    def test_counters_are_those_of_the_olt(self):
        self.start()
        found = self.scrape()
        place = sorted(key for key, up in found["olt_ont_up"].items() if up)[0]
        counters = self.admin.get("monitoring.interface.ont.counters.olt_side.pon", place[0], place[1])[0]
        for label, metric in (("Rx Bytes", "receive_bytes"), ("Tx Packets", "transmit_packets"), ("BIP Errors", "bip_errors"),
                              ("FEC Codewords", "fec_codewords")):  # the plant's clock stands still
            self.assertEqual(found[f"olt_ont_{metric}_total"][place], counters[label])
        before = sum(found["olt_ont_receive_bytes_total"].values())
        self.olt.tell({"step_s": 60})
        self.assertGreater(sum(self.scrape()["olt_ont_receive_bytes_total"].values()), before)

    def test_what_fails_is_absent_and_told(self):
        self.start()
        self.olt.tell({"fault": "peer_error", "target": "dhcp-ra", "value": 5})
        self.olt.tell({"fault": "module_no_diagnostics", "target": "pon/3"})
        self.olt.tell({"fault": "fan_absent", "target": "2"})
        found = self.scrape()
        self.assertNotIn("olt_pon_port_dhcp_leases", found)
        self.assertEqual({key for key, success in found["olt_exporter_collector_success"].items() if not success}, {("dhcp",)})
        self.assertEqual(found["olt_exporter_requests_total"][("dhcp", "refused")], 1)
        self.assertNotIn(("3",), found["olt_pon_port_module_temperature_celsius"])
        self.assertIn(("3",), found["olt_pon_port_module_present"])
        self.assertNotIn(("2",), found["olt_fan_rpm"])
        self.assertEqual(found["olt_fan_present"][("2",)], 0)
        self.olt.tell({"fault": "peer_down", "target": "fsm-pon"})
        found = self.scrape()
        self.assertEqual([name for name in found if name.startswith("olt_ont_")], [])
        self.assertIn("olt_uptime_seconds", found)
        self.olt.tell({"clear": "all"})
        deadline = time.monotonic() + PATIENCE  # a peer that was down is asked again within a second
        while not all(self.scrape()["olt_exporter_collector_success"].values()):
            self.assertLess(time.monotonic(), deadline)

    def test_a_slow_peer_does_not_hold_a_scrape_for_ever(self):
        self.start("--budget-ms", "1000")
        self.olt.tell({"fault": "peer_slow", "target": "bcm-custom", "value": 400})
        begin = time.monotonic()
        found = self.scrape()
        self.assertLess(time.monotonic() - begin, 1 + 6 + 1)  # the budget, one request, a busy machine
        self.assertEqual(found["olt_exporter_collector_success"][("ont_counters",)], 0)
        self.assertGreater(found["olt_exporter_requests_total"][("mac", "skipped")], 0)
        self.assertEqual(found["olt_up"][()], 1)

    def test_the_session_is_kept_and_outlives_restarts_of_the_daemon(self):
        self.start()
        for _ in range(20):
            found = self.scrape()
        self.assertEqual(found["olt_exporter_logins_total"][("success",)], 1)
        self.olt.kill_daemon()
        found = self.scrape()
        self.assertEqual((found["olt_up"][()], set(found["olt_exporter_collector_success"].values())), (0, {0}))
        self.assertNotIn("olt_uptime_seconds", found)
        self.olt.start_daemon()
        self.olt.log_in().close()
        found = self.scrape()
        self.assertEqual((found["olt_up"][()], found["olt_exporter_logins_total"][("success",)]), (1, 2))
        self.assertEqual(set(found["olt_exporter_collector_success"].values()), {1})
        log = self.olt.root / "var/log/api-service-changes.log"
        self.exporter.send(signal.SIGTERM)
        self.assertEqual(self.exporter.child.wait(PATIENCE), 0)
        self.assertRegex(log.read_text().splitlines()[-1], "auth unauth: done")

    def test_a_refused_login_is_told_and_not_tried_at_each_scrape(self):
        self.start(password="wrong")
        for _ in range(3):
            found = self.scrape()
        self.assertEqual(found["olt_up"][()], 0)
        self.assertEqual(found["olt_exporter_logins_total"][("refused",)], 1)
        self.assertEqual([name for name in found if name.startswith(("olt_ont", "olt_pon", "olt_front"))], [])
        self.password.write_text("viewer\n")  # another password is tried at once
        self.assertEqual(self.scrape()["olt_up"][()], 1)
        self.password.chmod(0o640)
        self.olt.kill_daemon()
        self.olt.start_daemon()
        self.olt.log_in().close()
        self.assertEqual(self.scrape()["olt_up"][()], 0)
        self.exporter.send(signal.SIGTERM)
        said = self.exporter.child.stdout.read().decode()
        self.assertIn("the login of 'viewer' was refused", said)
        self.assertIn("chmod 600", said)
        self.assertNotIn("wrong", said)
        self.assertLess(said.count("\n"), 5)  # once each, not at every scrape

    def test_scrapes_that_overlap_share_a_collection(self):
        self.start("--pause-ms", "20")
        before = self.scrape()["olt_exporter_requests_total"][("system", "success")]
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            texts = list(pool.map(lambda _: fetch(), range(4)))
        self.assertEqual(len(set(texts)), 1)
        self.assertEqual(samples_of(texts[0])["olt_exporter_requests_total"][("system", "success")], before + 1)

    def test_only_what_is_wanted_is_asked_for(self):
        self.start("--collectors", "ont_state,ont_counters", "--pon-ports", "2,5")
        found = self.scrape()
        self.assertEqual({key[0] for key in found["olt_ont_up"]}, {"2", "5"})
        self.assertEqual(set(found["olt_exporter_collector_success"]), {("ont_state",), ("ont_counters",)})
        self.assertNotIn("olt_uptime_seconds", found)

    def test_a_client_that_does_not_read_holds_nobody_up(self):
        self.start()
        with socket.create_connection(ADDRESS.split(":")) as idle:
            idle.sendall(b"GET /metrics HTTP/1.1\r\nHost: x\r\n\r\n")
            self.assertEqual(self.scrape()["olt_up"][()], 1)


if __name__ == "__main__":
    isolate(BUILD)
    unittest.main(argv=sys.argv[:-1])
