#!/usr/bin/python3
"""client/python/olt_api.py with real processes.

usage: tests/system/python_client_test.py [CASE...] BUILD-FOLDER
"""

import os
import pathlib
import re
import signal
import sys
import unittest

sys.dont_write_bytecode = True
CHECKOUT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(CHECKOUT / "scripts"))
from torture_loops.olt import Olt, isolate, olt_api  # noqa: E402

BUILD = sys.argv[-1]
HOSTNAME = "configuration.CommonGCfg.hostname"
PON_PORT = "configuration.ZebGCfg.pon.port_state"
ONT = "configuration.ZebGCfg.pon.ont"
PATIENCE = 0.3  # seconds, for an answer that does not come


class PythonClient(unittest.TestCase):
    def setUp(self):
        self.olt = self.enterContext(Olt(BUILD))
        self.client = self.enterContext(self.olt.start("--onts", "40", "--configured", "40"))

    def refusal(self, act, *arguments, kind=olt_api.Refused, **more):
        """What of the first error is said to programs and to people."""
        with self.assertRaises(kind) as caught:
            act(*arguments, **more)
        error = caught.exception.errors[0]
        return error.index, error.path, error.text

    def test_password_comes_as_text_from_a_file_or_from_a_descriptor(self):
        file = self.olt.root / "password"
        file.write_text("viewer\nsecond line\n")
        file.chmod(0o640)
        with olt_api.Client() as client:
            self.assertRaisesRegex(PermissionError, "chmod 600", client.login, "viewer", file=file)
            file.chmod(0o600)
            client.login("viewer", file=file)
            self.assertEqual(client.privilege, "viewer")
            self.assertEqual(self.refusal(client.set, HOSTNAME, {}), (12, "api_service", "Access denied"))
            session = client.session_id
        with olt_api.Client(session_id=session) as client:
            self.assertEqual(self.refusal(client.get, HOSTNAME, kind=olt_api.NotLoggedIn)[:2], (12, "api_service"))
        with olt_api.Client() as client, open(file, encoding="utf-8") as text:
            client.login("viewer", fd=text.fileno())
            self.assertEqual(client.get(HOSTNAME)["hostname"], self.client.get(HOSTNAME)["hostname"])
        with olt_api.Client() as client:
            self.assertEqual(self.refusal(client.login, "viewer", "operator"),
                             (12, "auth", "Access denied (InvalidCredentials)"))
            self.assertRaises(olt_api.NotLoggedIn, client.get, HOSTNAME)

    def test_configuration_is_read_changed_and_committed(self):
        before = self.client.get(PON_PORT, "1-2")
        self.client.update(PON_PORT, {"description": "two"}, "1-2")
        self.assertEqual(self.client.get(PON_PORT, "1-2"), before)
        self.assertEqual(self.client.get(PON_PORT, 2, config="candidate"), [{**before[1], "description": "two"}])
        self.client.rollback()
        self.client.update(HOSTNAME, {"hostname": "of-python"})
        self.client.commit()
        self.client.save()
        self.assertEqual(self.client.get(HOSTNAME), {"hostname": "of-python"})
        self.client.delete(ONT, 1, 1)
        self.client.commit()
        self.assertEqual(self.client.get(ONT, 1, 1)[0]["serial"], [0] * 10)
        self.client.default()
        self.assertEqual(self.client.get(HOSTNAME, config="candidate"), {"hostname": "olt"})

    def test_each_record_comes_with_its_indices(self):
        onts = dict(self.client.each(ONT, "1-2,16", "2-3,1"))
        self.assertEqual(list(onts), [(port, ont) for port in (1, 2, 16) for ont in (1, 2, 3)])
        for place, record in onts.items():
            self.assertEqual([record], self.client.get(ONT, *place))
        self.client.set(f"{ONT}.service", {"subscriber_id": "here"}, 2, 3, 7)
        services = self.client.each(f"{ONT}.service", "1-2", "1-3", "1-8", config="candidate")
        self.assertEqual([place for place, record in services if record["subscriber_id"]], [(2, 3, 7)])
        self.assertEqual([place for place, _ in self.client.each(PON_PORT, "3,1")], [(1,), (3,)])
        for text in ("", "0", "3-1", "1,,2", "1-4097", "a"):
            self.assertRaises(ValueError, olt_api.numbers, text)
        self.assertEqual(olt_api.ranges_of(olt_api.numbers("7,1-3,2-4,9")), "1-4,7,9")

    def test_refusals_have_index_path_and_text(self):
        self.assertEqual(self.refusal(self.client.set, PON_PORT, {"ont_limit": 70000}, 1)[:2], (22, "ont_limit"))
        self.assertEqual(self.refusal(self.client.set, HOSTNAME, {"hostnam": "x"}), (20, "hostnam", "Unknown key hostnam"))
        self.assertEqual(self.refusal(self.client.get, PON_PORT), (11, "get", "Wrong number of indices"))
        self.client.update("configuration.CommonGCfg.system.oob", {"enabled": False})
        self.client.update("configuration.CommonGCfg.management", {"enabled": False})
        self.assertEqual(self.refusal(self.client.commit)[0::2],
                         (14, "Commit failed: No management interface is enabled"))
        reference = (CHECKOUT / "docs/api-reference.md").read_text().split("## Error texts")[1]
        self.assertEqual({int(index): text for index, text in re.findall(r"^\| (\d+) \| (.*) \|$", reference, re.M)},
                         olt_api.ERROR_TEXTS)

    def test_lost_answers_connections_and_sessions_are_told_apart(self):
        hurried = self.enterContext(olt_api.Client(patience=PATIENCE, session_id=self.client.session_id))
        self.olt.daemon.send(signal.SIGSTOP)
        self.assertRaises(olt_api.TimeOut, hurried.get, HOSTNAME)
        self.olt.daemon.send(signal.SIGCONT)
        self.assertRaises(olt_api.TransportError, hurried.get, HOSTNAME)
        patient = self.enterContext(olt_api.Client(session_id=self.client.session_id))
        self.assertEqual(self.refusal(patient.get, "monitoring.nothing")[0], 9)
        self.olt.kill_daemon()
        self.assertRaises(olt_api.TransportError, patient.get, HOSTNAME)
        self.assertRaises(olt_api.TransportError, patient.connect)
        self.olt.start_daemon()
        self.olt.log_in().close()
        patient.session_id = "4711"
        patient.connect()
        self.assertRaises(olt_api.NotLoggedIn, patient.get, HOSTNAME)


if __name__ == "__main__":
    isolate(BUILD)
    unittest.main(argv=sys.argv[:-1])
