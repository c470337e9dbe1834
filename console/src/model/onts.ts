import type {OntState} from "olt_api";

import {reception, type Reception} from "./optics.ts";
import {isSet, serialText, type Serial, type SerialFormat} from "./serial.ts";

export type Group = "online" | "starting" | "failed" | "offline" | "disabled" | "unactivated";

export const groups: readonly {id: Group; title: string; level: "good" | "busy" | "bad" | "off" | "new"}[] = [
  {id: "online", title: "Online", level: "good"},
  {id: "starting", title: "Starting", level: "busy"},
  {id: "failed", title: "Failed", level: "bad"},
  {id: "offline", title: "Offline", level: "bad"},
  {id: "disabled", title: "Disabled", level: "off"},
  {id: "unactivated", title: "Unactivated", level: "new"},
];

export const levelOf = (group: Group) => groups.find(({id}) => id === group)!.level;

/** What each state means to an operator. */
const meanings: Readonly<Record<NonNullable<OntState["state"]>, {group: Group; text: string}>> = {
  INITIAL: {group: "starting", text: "Switched on, nothing received of it yet"},
  STANDBY: {group: "starting", text: "Waits for its parameters"},
  SERIAL_NUMBER: {group: "starting", text: "Its serial number is being asked for"},
  RANGING: {group: "starting", text: "Its distance is being measured"},
  AUTHENTICATION: {group: "starting", text: "Its serial number and password are being checked"},
  MIB_UPLOAD: {group: "starting", text: "Tells what it has"},
  CONFIGURING: {group: "starting", text: "Its services are being set up"},
  OPERATIONAL: {group: "online", text: "In service"},
  AUTH_FAILED: {group: "failed", text: "Its password is not the configured one"},
  CONFIG_FAILED: {group: "failed", text: "It could not be provisioned"},
  POPUP: {group: "failed", text: "Its signal was lost a moment ago"},
  EMERGENCY_STOP: {group: "failed", text: "Stopped, because it sent in the time of others"},
  DISABLED: {group: "disabled", text: "Kept from service by its configuration"},
  UNACTIVATED: {group: "unactivated", text: "Seen on the fibre, but not configured"},
  UNKNOWN: {group: "failed", text: "In a state that has no name"},
};

/** One ONT, ready to be shown. */
export interface Ont {
  /** "3/17"; of one that nobody configured "3:SIMUA0030011", by the port where it is seen. */
  key: string;
  port: number;
  /** 0: not configured. */
  ont: number;
  serial: Serial;
  serialText: string;
  state: string;
  group: Group;
  meaning: string;
  seenAt?: number;
  rssi?: number;
  reception?: Reception;
  distance?: number;
  model: string;
  software: string;
  description: string;
  /** Lower case; what the text filter looks in. */
  search: string;
  raw: OntState;
}

export function ontOf(raw: OntState, format: SerialFormat, odnClass: (port: number) => string | undefined): Ont {
  const isConfigured = raw.cfg_port !== undefined && raw.cfg_ont_id !== undefined;
  const port = raw.cfg_port ?? raw.port ?? 0;
  const ont = raw.cfg_ont_id ?? 0;
  const serial = isSet(raw.serial) ? serialText(raw.serial, format) : "";
  const {state, group, text} = stateOf(raw, isConfigured);
  const info = raw.ont_info;
  const rssi = info && state !== "EMERGENCY_STOP" && info.rssi > darkness ? info.rssi : undefined;
  const key = isConfigured ? `${port}/${ont}` : `${port}:${serial}`;
  const described = {model: info?.equipment_id ?? "", software: info?.software_version ?? ""};
  const description = raw.description ?? "";
  return {
    key,
    port,
    ont,
    serial: raw.serial,
    serialText: serial,
    state,
    group,
    meaning: text,
    seenAt: raw.port,
    rssi,
    reception: rssi === undefined ? undefined : reception(rssi, odnClass(raw.port ?? port)),
    distance: info?.distance,
    ...described,
    description,
    search: `${key} ${serial} ${state} ${described.model} ${described.software} ${description}`.toLowerCase(),
    raw,
  };
}

/** In dBm: what is reported where no light is received. */
const darkness = -40;

function stateOf(raw: OntState, isConfigured: boolean): {state: string; group: Group; text: string} {
  if (raw.state === undefined) {
    return {
      state: "OFFLINE",
      group: "offline",
      text: "Configured, but nothing is heard of it: no power, or no light",
    };
  }
  if (raw.state === "UNACTIVATED" && isConfigured) {
    return {state: "ELSEWHERE", group: "failed", text: `Seen on PON port ${raw.port}, where it is not configured`};
  }
  const meaning = meanings[raw.state];
  return {state: raw.state, group: meaning.group, text: meaning.text};
}
