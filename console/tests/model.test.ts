import assert from "node:assert/strict";
import {test} from "node:test";

import type {OntState} from "olt_api";

import {ratesBetween} from "../src/model/counters.ts";
import {differences} from "../src/model/difference.ts";
import {recordOf} from "../src/model/elements.ts";
import {labelOf, unitOf} from "../src/model/labels.ts";
import {ontOf} from "../src/model/onts.ts";
import {filtered, sorted} from "../src/model/ont_filter.ts";
import {ontIndices, parseRange, rangeText} from "../src/model/ranges.ts";
import {parseSerial, serialText} from "../src/model/serial.ts";

const serial = [83, 73, 77, 85, 160, 3, 0, 17, 0, 0];

test("serials are read in both forms, and shown in either", () => {
  for (const text of ["SIMUA0030011", " 53494d55a0030011 "]) assert.deepEqual(parseSerial(text), serial);
  for (const text of ["SIMU", "SIMUA003001G", "53494D55A003001"]) assert.equal(parseSerial(text), undefined);
  assert.equal(serialText(serial), "SIMUA0030011");
  assert.equal(serialText(serial, "hex"), "53494D55A0030011");
  assert.equal(serialText([1, 2, 3, 4, 160, 3, 0, 17, 0, 0]), "01020304A0030011");
});

test("ranges", () => {
  assert.equal(rangeText([7, 1, 2, 3, 3]), "1-3,7");
  assert.deepEqual(parseRange("1-3, 7"), [1, 2, 3, 7]);
  for (const text of ["1-", "3-1", "a", "1-99999999"]) assert.equal(parseRange(text), undefined);
  assert.deepEqual(
    ontIndices([
      {port: 3, ont: 2},
      {port: 1, ont: 1},
      {port: 3, ont: 1},
    ]),
    ["1/1", "3/1-2"],
  );
});

test("differences go to the field, also in records within records", () => {
  const running = {name: "a", ports: [1, 2], servers: [{address: "x", version: 4}]};
  const candidate = {
    name: "a",
    ports: [1],
    servers: [
      {address: "x", version: 3},
      {address: "y", version: 4},
    ],
  };
  assert.deepEqual(
    differences(running, candidate).map(({path}) => path),
    ["ports", "servers.0.version", "servers.1"],
  );
});

test("the path of an error is that of a record", () => {
  assert.deepEqual(recordOf("configuration.ZebGCfg.pon.ont.service.3.17.2")?.indices, [3, 17, 2]);
  assert.equal(recordOf("configuration.ZebGCfg.pon.ont.3.17")?.element.title, "ONTs");
  assert.equal(recordOf("command.commit"), undefined);
});

test("labels and units", () => {
  const cases = {
    max_frame_size: ["Max frame size", ""],
    downstream_kbps: ["Downstream", "kbit/s"],
    s_vid: ["S-VLAN", ""],
    utc_offset_min: ["UTC offset", "min"],
    target_temp_c: ["Target temperature", "°C"],
    vlan_id: ["VLAN ID", ""],
  };
  for (const [key, expected] of Object.entries(cases)) assert.deepEqual([labelOf(key), unitOf(key)], expected);
});

test("rates; none where counters begin anew", () => {
  const rates = ratesBetween(
    {"Rx Bytes": 0, "Tx Bytes": 0, "BIP Units": 0},
    {"Rx Bytes": 250, "Tx Bytes": 500, "BIP Units": 1000, "BIP Errors": 4},
    2,
  );
  assert.deepEqual(rates, {up: 1000, down: 2000, errorRatio: 0.0005, uncorrectable: 0});
  assert.equal(ratesBetween({"Rx Bytes": 9}, {"Rx Bytes": 1}, 2), undefined);
});

test("ONTs: states, filter, and order with those unknown last", () => {
  const info = (rssi: number) => ({
    equipment_id: "M",
    hardware_version: "1",
    software_version: "2",
    equalization_delay: 0,
    fec_state: 1,
    distance: 1,
    rssi,
  });
  const states: Omit<OntState, "password">[] = [
    {cfg_port: 1, cfg_ont_id: 1, serial, state: "OPERATIONAL", port: 1, ont_info: info(-27)},
    {cfg_port: 1, cfg_ont_id: 2, serial, description: "House 7"},
    {cfg_port: 1, cfg_ont_id: 3, serial, state: "UNACTIVATED", port: 2},
    {serial, state: "UNACTIVATED", port: 1},
    {cfg_port: 1, cfg_ont_id: 10, serial, state: "OPERATIONAL", port: 1, ont_info: info(-18)},
  ];
  const onts = states.map(raw => ontOf({password: "", ...raw}, "vendor_hex", () => "b_plus"));
  assert.deepEqual(
    onts.map(({group}) => group),
    ["online", "offline", "failed", "unactivated", "online"],
  );
  assert.deepEqual(
    onts.map(({reception}) => reception?.level),
    ["warn", undefined, undefined, undefined, "good"],
  );
  const all = {text: "", group: "" as const, port: 0, optics: "" as const};
  assert.deepEqual(
    filtered(onts, {...all, text: "house 7"}).map(({key}) => key),
    ["1/2"],
  );
  assert.deepEqual(
    filtered(onts, {...all, power: [-27, -26]}).map(({key}) => key),
    ["1/1"],
  );
  for (const descending of [false, true]) {
    const keys = sorted(onts, "rssi", descending).map(({rssi}) => rssi);
    assert.deepEqual(keys, [...(descending ? [-18, -27] : [-27, -18]), undefined, undefined, undefined]);
  }
});
