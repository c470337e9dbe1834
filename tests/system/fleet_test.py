#!/usr/bin/python3
"""scripts/fleet with a real Prometheus: silence, alerts within two scrapes, and every query of the dashboard.

usage: tests/system/fleet_test.py [CASE...] BUILD-FOLDER
"""

import json
import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.parse
import urllib.request

sys.dont_write_bytecode = True
CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(CHECKOUT / "scripts"))
from torture_loops.olt import isolate  # noqa: E402

BUILD = pathlib.Path(sys.argv[-1]).resolve()
INTERVAL = 3  # seconds between scrapes
PATIENCE = 120
OLTS = ("olt-01", "olt-02")


def query(expression):
    """[(labels, value or [(time, value), ...]), ...]"""
    url = "http://127.0.0.1:19090/api/v1/query?" + urllib.parse.urlencode({"query": expression})
    with urllib.request.urlopen(url, timeout=PATIENCE) as answer:
        result = json.load(answer)["data"]["result"]
    return [(entry["metric"], entry.get("values") or entry["value"][1]) for entry in result]


class FleetOfTwo(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="fleet-", dir="/tmp"))
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.fleet = subprocess.Popen(
            [CHECKOUT / "scripts/fleet", str(len(OLTS)), "--onts", "96", "--interval", str(INTERVAL), "--build", BUILD,
             "--folder", cls.folder], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        cls.addClassCleanup(cls.end)
        cls.said = ""
        for line in cls.fleet.stdout:
            cls.said += line
            if line.startswith("The fleet is ready"):
                break
        else:
            raise RuntimeError(cls.said)
        cls.wait_for(lambda: len(query("count_over_time(olt_up[10m]) >= 4")) == len(OLTS))

    @classmethod
    def end(cls):
        cls.fleet.send_signal(signal.SIGTERM)
        cls.fleet.stdout.read()
        assert cls.fleet.wait(PATIENCE) == 0

    @classmethod
    def wait_for(cls, condition):
        """What it returns once that is something. The fleet has no more to say, unless it ends."""
        deadline = time.monotonic() + PATIENCE
        while not (found := condition()):
            if time.monotonic() > deadline or select.select([cls.fleet.stdout], [], [], 0.2)[0]:
                raise TimeoutError(condition)
        return found

    def tell(self, olt, *command):
        subprocess.run([BUILD / "simulator/olt_sim", *command], env={"OLT_ROOT": str(self.folder / olt)}, check=True,
                       stdout=subprocess.DEVNULL)

    def expect_alert(self, name, since, **labels):
        """It fires, and no later than two scrapes after the fault."""
        labels = {"alertname": name, "alertstate": "firing", **labels}
        selector = "{%s}" % ", ".join(f'{key}="{value}"' for key, value in labels.items())
        self.wait_for(lambda: query(f"ALERTS{selector}"))
        fired = query(f"ALERTS{selector}[10m]")[0][1][0][0]
        scrapes = query('up{instance="%s"}[10m]' % labels["instance"])[0][1]
        between = [when for when, _ in scrapes if since < when <= fired]
        self.assertLessEqual(len(between), 2, name)

    def test_1_a_healthy_fleet_is_silent(self):
        self.assertEqual(query("ALERTS"), [])
        self.assertEqual(query("olt_up == 1 unless olt_exporter_collector_success == 0")[0][1], "1")
        self.assertEqual([value for _, value in query("olt:onts:count")], ["96", "96"])
        with urllib.request.urlopen("http://127.0.0.1:19090/api/v1/rules", timeout=PATIENCE) as answer:
            groups = json.load(answer)["data"]["groups"]
        self.assertEqual([rule["lastError"] for group in groups for rule in group["rules"] if rule.get("lastError")], [])

    def test_1_its_inventory_is_one_for_the_playbook(self):
        environment = {**os.environ, "ANSIBLE_COLLECTIONS_PATH": str(BUILD), "ANSIBLE_HOME": str(self.folder / "ansible"),
                       "ANSIBLE_REMOTE_TEMP": str(self.folder / "ansible/remote"), "LC_ALL": "C.UTF-8"}
        done = subprocess.run(["ansible-playbook", "--check", "-i", self.folder / "inventory.json",
                               CHECKOUT / "ansible/playbooks/subscribers.yml"], env=environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)
        self.assertEqual(re.findall(r"^(\S+) +: ok=2 +changed=1 ", done.stdout, re.M), list(OLTS), done.stdout + done.stderr)

    def test_2_faults_raise_their_alerts_within_two_scrapes(self):
        cut, street = [labels["port"] for labels, _ in query('olt:pon_port_onts_up:sum{instance="olt-01"} >= 5')][:2]
        onts = [labels["ont"] for labels, _ in query(f'olt_ont_up{{instance="olt-01", port="{street}"}} == 1')]
        self.tell("olt-01", "fault", "ont_los", cut)
        for ont in onts[1:]:
            self.tell("olt-01", "fault", "ont_dying_gasp", f"{street}/{ont}")
        self.tell("olt-02", "fault", "temperature", "3", "value", "100")
        self.tell("olt-02", "fault", "fan_failed", "1")
        broken = time.time()
        self.expect_alert("OltPonPortOntsGone", broken, instance="olt-01", port=cut)
        self.expect_alert("OltPonPortOntsLost", broken, instance="olt-01", port=street)
        self.expect_alert("OltTemperatureCritical", broken, instance="olt-02", sensor="Switch chip")
        self.expect_alert("OltFanFailed", broken, instance="olt-02", fan="1")
        self.assertEqual({labels["alertname"] for labels, _ in query('ALERTS{instance="olt-01", alertstate="firing"}')},
                         {"OltPonPortOntsGone", "OltPonPortOntsLost"})

    def test_3_every_query_of_the_dashboard_has_an_answer(self):
        dashboard = json.loads((CHECKOUT / "monitoring/dashboard.json").read_text())
        ont = query("olt_ont_up == 1")[0][0]
        variables = {"instance": ont["instance"], "port": ont["port"], "ont": ont["ont"]}
        expressions = [target["expr"] for panel in dashboard["panels"] for target in panel.get("targets", ())]
        self.assertGreater(len(expressions), 40)
        for expression in expressions:
            filled = re.sub(r"\$(\w+)", lambda name: variables[name[1]], expression)
            try:
                self.wait_for(lambda: query(filled))  # rates need a second sample
            except (TimeoutError, urllib.error.HTTPError) as error:
                self.fail(f"{filled}: {error}")
        for variable in dashboard["templating"]["list"]:
            if variable["type"] == "query":
                selector = re.fullmatch(r"label_values\((.*), (\w+)\)", variable["query"]["query"])
                found = query(re.sub(r"\$(\w+)", lambda name: variables[name[1]], selector[1]))
                self.assertIn(variables[selector[2]], {labels[selector[2]] for labels, _ in found})

    def test_4_a_dead_daemon_raises_its_alert_within_two_scrapes(self):
        pid = int((self.folder / "olt-02/run/api_service.pid").read_text())
        os.kill(pid, signal.SIGKILL)
        self.expect_alert("OltDown", time.time(), instance="olt-02")
        self.assertEqual(query('olt_ont_up{instance="olt-02"}'), [])


if __name__ == "__main__":
    isolate(BUILD)
    unittest.main(argv=sys.argv[:-1])
