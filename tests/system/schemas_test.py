#!/usr/bin/python3
"""The schemas against what a daemon really takes and gives, on several plants.

usage: tests/system/schemas_test.py [CASE...] BUILD-FOLDER
"""

import functools
import json
import pathlib
import re
import sys
import unittest

import jsonschema

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
from torture_loops.olt import Olt, isolate, olt_api  # noqa: E402

BUILD = pathlib.Path(sys.argv[-1])
FOLDER = BUILD / "schemas/documents"
INDEX = json.loads((FOLDER / "index.json").read_text())
SETTABLE = [element for element in INDEX["elements"]
            if any((route["path"], route["method"]) == (element["path"], "set") for route in INDEX["routes"])]
SERIAL = [83, 73, 77, 85, 160, 1, 0, 1, 0, 0]  # of ONT 1/1, where the plant has configured it
AGES = 2000  # seconds, after which there are counters of a whole interval

# What requests carry beside what their schema says alone; the longest beginning of a path counts.
CARRIED = {
    "": {},
    "auth": {"data": {"user": "viewer", "password": "viewer"}},
    "configuration.CommonGCfg.profiles": {"indices": ["1-3"]},
    "configuration.ZebGCfg.pon.ont": {"indices": ["1", "1-3"]},
    "configuration.ZebGCfg.pon.ont.service": {"indices": ["1", "1-3", "1-8"]},
    "configuration.ZebGCfg.pon.port_state": {"indices": ["1-16"]},
    "configuration.ZebGCfg.switch_config": {"indices": ["1-4"]},
    "monitoring.interface": {"indices": ["1-4"]},
    "monitoring.interface.ont.counters": {"indices": ["1-2", "1-6"]},
    "monitoring.interface.ont.state": {},
    "command.olt.firmware.update": {"data": {"path": "/nowhere"}},
    "command.reconfigure.pon_port": {"indices": ["2"]},
    "command.reconfigure.ont": {"indices": ["1/2", "2/1-3"]},
    "command.resettodefault.ont": {"indices": ["1/2"]},
    "command.reboot.ont": {"indices": ["1/2"]},
    "test": {"data": {"any": ["thing"]}},
    "utils.ont.find": {"data": {"serial": SERIAL}},
    "utils.text": {"data": {"text": ""}},
}
LAST = ("command.default", "command.rollback", "command.reboot", "unauth")  # they take away what others need
LONGEST_FIXED = 10  # items, of a serial
REFUSED = ("command.olt.firmware.update", "command")  # everywhere, as there is no such file

# Keys without which an answer is one that there can be, too: parts that not every port, ONT or board has.
OPTIONAL = re.compile(r"sfp|eddi|configuration|(service|GEM port) \d+|\d+|MC|BC|veip|Multicast|Broadcast|.* counters for .*")

# Values that each field of each record is given in turn.
POOL = [
    None, True, False, -129, -1, 0, 1, 2, 3, 7, 8, 31, 32, 33, 63, 64, 65, 100, 101, 128, 255, 256, 1000, 1517, 1518, 4094, 4095,
    65535, 65536, 2488320, 2488321, 1244160, 14880952, 16777216, 16777217, 2**32, 1.5, 64.0, 1e300,
    "", "a", "-", "-a", "a-", "a-b", "a.b", "a..b", "a_b", "+1", " a", "a b", "a\n", "\n", "\x07", "\x7f", "\u0085", "a\\b", "~",
    "a" * 10, "a" * 11, "a" * 20, "a" * 21, "a" * 31, "a" * 32, "a" * 47, "a" * 48, "a" * 63, "a" * 64, "a" * 95, "a" * 96,
    "a" * 63 + "." + "b" * 63, "10.1", "1.2.3.4", "1.2.3.256", "01.2.3.4", "1.2.3", "1.2.3.4\n", "223.255.255.255", "224.0.0.0",
    "224.0.1.0", "239.255.255.255", "240.0.0.0", "00:11:22:aa:BB:cc", "00:11:22:33:44", "00-11-22-33-44-55", "00:11:22:33:44:5g",
    "1-4,7", "4094", "4095", "0", "007", "1,,2", "1-", ",", "1-4095", "3,1-2,2", "abcd", "abc", "0123456789", "0123456789abcdef",
    "auto", "static", "Auto", "$ob1$", "$ob2$XKLo5fQGMc5pbQ", "$ob1$XKLo5fQGMc5pbQ", "$ob1$" + "A" * 60,
    [], {}, [None], [0], [1], [1, 2], [1, 1], [4, 5], [17], [33], ["a"], [{}], [{}] * 2, [{}] * 3, [{}] * 8, [{}] * 9, [True] * 2,
    ["1.2.3.4"] * 2, ["1.2.3.4"] * 3, SERIAL, SERIAL[:9], SERIAL + [0], SERIAL[:9] + [1], [256] + SERIAL[1:], {"a": 1},
]
CONTRADICTION, NOT_OBFUSCATED, BAD_LIST = 32, 34, 30


@functools.cache
def validator(name):
    schema = json.loads((FOLDER / name).read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def carried(path):
    return CARRIED[max((begin for begin in CARRIED if path.startswith(begin)), key=len)]


def mutants(value, put=None, key=""):
    """Changes one thing in an answer after the other, says what, and takes it back."""
    if isinstance(value, dict):
        value["more"] = 1
        yield f"more in {key}"
        del value["more"]
        is_first = True  # of those that there may be many of, alike
        for name, member in list(value.items()):
            if not OPTIONAL.fullmatch(name):
                del value[name]
                yield f"no {key}.{name}"
                value[name] = member
            elif name[-1].isdigit():
                if not is_first:
                    continue
                is_first = False
            yield from mutants(member, lambda new, name=name: value.__setitem__(name, new), f"{key}.{name}")
    elif isinstance(value, list):
        for place, item in enumerate(value):
            yield from mutants(item, lambda new, place=place: value.__setitem__(place, new), f"{key}[{place}]")
    else:
        put(5 if isinstance(value, str) else "5")
        yield f"another type of {key}"
        put(value)


def small(answer):
    """The answer with the ends alone of arrays that are longer than any whose length is fixed."""
    if isinstance(answer, dict):
        return {key: small(value) for key, value in answer.items()}
    if isinstance(answer, list):
        return [small(item) for item in (answer if len(answer) <= LONGEST_FIXED else [answer[0], answer[-1]])]
    return answer


class Schemas(unittest.TestCase):
    def start(self, *options):
        olt = self.enterContext(Olt(BUILD))
        return self.enterContext(olt.start(*options))

    def request(self, client, route, **more):
        """A request that fits its schema."""
        schema = validator(route["request"])
        members = {"session_id": client.session_id, "data": {},
                   "config_type": "candidate" if route["method"] in ("set", "delete") else "running",
                   **carried(route["path"]), **more}
        request = {"path": route["path"], "method": route["method"],
                   **{key: value for key, value in members.items() if key in schema.schema["properties"]}}
        schema.validate(request)
        return request

    def ask(self, client, request):
        client.connection.send_text(json.dumps(request).encode())
        return client.receive()

    def check(self, route, request, answer):
        try:
            validator(route["answer"]).validate(answer)
        except jsonschema.ValidationError as error:
            self.fail(f"{json.dumps(request)} gives what is not in {route['answer']}: {error}")

    def walk(self, client):
        """The answers of all routes, those that take away what others need last."""
        answers = {}
        for route in sorted(INDEX["routes"], key=lambda route: LAST.index(route["path"]) + 1 if route["path"] in LAST else 0):
            read = answers.get((route["path"], "get"), {}).get("data")
            is_set = route["method"] == "set" and read is not None
            more = {"data": read[0] if isinstance(read, list) else read} if is_set else {}
            request = self.request(client, route, **more)
            answer = answers[route["path"], route["method"]] = self.ask(client, request)
            self.check(route, request, answer)
        return answers

    def refuse_mutants(self, answers):
        """Of all answers, whatever changes in them does not fit any more."""
        for route in INDEX["routes"]:
            schema = validator(route["answer"])
            answer = small(answers[route["path"], route["method"]])
            if route["path"].startswith("test.echo"):
                del answer["data"]  # may be anything
            schema.validate(answer)
            for what in mutants(answer):
                self.assertFalse(schema.is_valid(answer), f"{route['answer']} takes {what}")
            schema.validate(answer)

    def test_answers_of_every_route_fit_and_their_mutants_do_not(self):
        for plant in ("demo", "faulty", "mixed-vendors", "empty"):
            with self.subTest(plant), Olt(BUILD) as olt, olt.start("--plant", plant) as client:
                olt.tell({"step_s": AGES})
                answers = self.walk(client)
                if plant == "demo":  # which has all that is asked for
                    self.assertEqual([route for route, answer in answers.items() if not answer["success"]], [REFUSED])
                self.refuse_mutants(answers)

    def test_refusals_fit(self):
        client = self.start("--plant", "empty")
        for route in INDEX["routes"]:
            request = {"path": route["path"], "method": route["method"], "indices": ["9999"], "data": {"no": 1}}
            for more in ({}, {"session_id": client.session_id}, {"session_id": "4711"}):
                if (route["path"], route["method"]) != ("unauth", "auth") and route["path"] not in LAST:
                    self.check(route, request, self.ask(client, {**request, **more}))

    def test_factory_records_fit_whole_and_as_data(self):
        client = self.start("--plant", "demo")
        client.default()
        for element in INDEX["elements"]:
            indices = carried(element["path"]).get("indices", [])
            read = client.get(element["path"], *indices, config="candidate")
            for record in read if isinstance(read, list) else [read]:
                validator(element["record"]).validate(record)
                validator(element["data"]).validate(record)
                self.assertFalse(validator(element["record"]).is_valid({**record, "more": 1}))
                for key in record:
                    less = {name: value for name, value in record.items() if name != key}
                    self.assertFalse(validator(element["record"]).is_valid(less), f"{element['record']} without {key}")

    def test_data_that_fits_is_what_the_daemon_takes(self):
        client = self.start("--plant", "empty")
        for element in SETTABLE:
            schema = validator(element["data"])
            definitions = schema.schema["$defs"]
            indices = [index.split("-")[0] for index in carried(element["path"]).get("indices", [])]
            for path, data in self.changes(definitions[schema.schema["$ref"].split("/")[-1]], definitions):
                answer = client.ask(element["path"], "set", indices=indices, config_type="candidate", data=data)
                errors = olt_api.Refused(answer).errors
                is_taken = all(error.index == CONTRADICTION for error in errors)
                if schema.is_valid(data) and any(self.is_beyond_schemas(error, data) for error in errors):
                    continue
                self.assertEqual(schema.is_valid(data), is_taken,
                                 f"{element['path']} {path}: {data}, {[str(error) for error in errors]}")
            client.rollback()

    def is_beyond_schemas(self, error, data):
        """Checksums of secrets, order within ranges, and lengths in bytes."""
        is_long = error.index == 24 and not json.dumps(data, ensure_ascii=False).isascii()
        return error.index in (NOT_OBFUSCATED, BAD_LIST) or is_long

    def changes(self, schema, definitions, path=""):
        """(path, data) for data with one value of the pool at one place."""
        required = {key: "a" for key in schema.get("required", [])}
        yield path + "more", {**required, "more": 1}
        for key in required:
            yield f"no {path}{key}", {}
        for key, field in schema["properties"].items():
            for value in POOL:
                yield path + key, {**required, key: value}
            items = field.get("items")
            inner = field.get("$ref") or (items and items.get("$ref"))
            if inner:
                for where, data in self.changes(definitions[inner.split("/")[-1]], definitions, f"{path}{key}."):
                    yield where, {**required, key: [data] if items else data}


if __name__ == "__main__":
    isolate(BUILD)
    unittest.main(argv=sys.argv[:-1])
