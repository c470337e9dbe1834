import {degraded, failed, type Rates} from "./counters.ts";
import type {FrontPortState, PonPortState, SystemState} from "olt_api";
import {counted} from "./format.ts";
import type {Ont} from "./onts.ts";
import type {PortSummary} from "./summary.ts";

export interface Concern {
  level: "bad" | "warn" | "new";
  title: string;
  detail: string;
  /** Where more is to be seen. */
  link: string;
}

export interface Seen {
  onts: readonly Ont[];
  byPort: ReadonlyMap<number, PortSummary>;
  ponPorts: readonly PonPortState[];
  frontPorts: readonly FrontPortState[];
  system?: SystemState;
  rates: ReadonlyMap<string, Rates>;
}

/** Degrees Celsius from which a sensor of the board is worth a look. */
const warm = 70;

/** What needs attention, the worst first. */
export function concernsOf(seen: Seen): Concern[] {
  const found = [...ofBoard(seen), ...ofPorts(seen), ...ofOnts(seen)];
  const order = {bad: 0, warn: 1, new: 2};
  return found.sort((a, b) => order[a.level] - order[b.level]);
}

function* ofBoard({system}: Seen): Generator<Concern> {
  if (!system) return;
  const link = "#/system";
  for (const [index, fan] of system.fans.entries()) {
    if (!fan.is_present)
      yield {level: "warn", title: `Fan ${index + 1} is missing`, detail: "The others run faster", link};
    else if (fan.is_fault)
      yield {level: "bad", title: `Fan ${index + 1} stands still`, detail: "The board gets hotter", link};
  }
  for (const [index, supply] of system.power_sources.entries()) {
    if (supply.is_present && !supply.is_power_good) {
      yield {level: "bad", title: `Power supply ${index + 1} gives no power`, detail: supply.model ?? "", link};
    }
  }
  for (const sensor of system.temp_sensors) {
    if (sensor.value >= warm)
      yield {level: "bad", title: `${sensor.id.trim()} at ${sensor.value} °C`, detail: "Temperature", link};
  }
  for (const [title, space] of [
    ["Memory", system.ram],
    ["Disk", system.disk],
  ] as const) {
    if (space.free < 0.1 * space.total)
      yield {level: "warn", title: `${title} nearly full`, detail: `${Math.round(space.free)} MiB free`, link};
  }
}

function* ofPorts({ponPorts, frontPorts, byPort}: Seen): Generator<Concern> {
  for (const port of ponPorts) {
    const link = `#/onts?port=${port.port}`;
    const title = `PON port ${port.port}`;
    const there = byPort.get(port.port);
    if (port.state === "FAULT") yield {level: "bad", title: `${title} has a fault`, detail: port.sfp_condition, link};
    else if (port.state === "NO_MODULE" && there) {
      yield {
        level: "bad",
        title: `${title} has no module`,
        detail: `${counted(there.configured, "ONT")} without service`,
        link,
      };
    } else if (there && there.configured > 1 && there.counts.offline === there.configured) {
      yield {
        level: "bad",
        title: `${title}: every ONT is offline`,
        detail: `${counted(there.configured, "ONT")}; look at the trunk fibre`,
        link,
      };
    }
    if (port.sfp_condition !== "Present" && port.sfp_condition !== "Absent") {
      yield {level: "warn", title: `${title}: module ${port.sfp_condition}`, detail: "Module condition", link};
    }
  }
  for (const port of frontPorts) {
    const link = `#/configuration/ZebGCfg.switch_config.front_port/${port.port}`;
    if (port.sfp_condition !== "Present" && port.sfp_condition !== "Absent") {
      yield {
        level: "warn",
        title: `Front port ${port.port}: module ${port.sfp_condition}`,
        detail: "Module condition",
        link,
      };
    } else if (port.status === "DOWN" && port.sfp_condition === "Present") {
      yield {level: "warn", title: `Front port ${port.port} has no link`, detail: "A module is plugged in", link};
    }
  }
}

function* ofOnts({onts, byPort, rates}: Seen): Generator<Concern> {
  const wholePorts = new Set(
    [...byPort]
      .filter(([, {counts, configured}]) => configured > 1 && counts.offline === configured)
      .map(([port]) => port),
  );
  const offline = onts.filter(({group, port}) => group === "offline" && !wholePorts.has(port));
  if (offline.length > 0)
    yield few("bad", offline, "offline", "No power (dying gasp) or no light (LOS)", "#/onts?state=offline");
  const byState = new Map<string, Ont[]>();
  for (const ont of onts) if (ont.group === "failed") byState.set(ont.state, [...(byState.get(ont.state) ?? []), ont]);
  for (const [state, there] of byState) {
    yield few("bad", there, state.toLowerCase().replaceAll("_", " "), there[0]!.meaning, "#/onts?state=failed");
  }
  const dim = onts.filter(({reception}) => reception?.level === "bad");
  if (dim.length > 0) yield few("bad", dim, "outside the optical limits", names(dim), "#/onts?optics=bad&sort=rssi");
  const weak = onts.filter(({reception}) => reception?.level === "warn");
  if (weak.length > 0) yield few("warn", weak, "with weak optics", names(weak), "#/onts?optics=warn&sort=rssi");
  const noisy = [...rates]
    .filter(([, {errorRatio}]) => errorRatio >= degraded)
    .sort(([, a], [, b]) => b.errorRatio - a.errorRatio);
  if (noisy.length > 0) {
    const [key, worst] = noisy[0]!;
    yield {
      level: worst.errorRatio >= failed ? "bad" : "warn",
      title: `${counted(noisy.length, "ONT")} with bit errors`,
      detail: `Worst: ${key}, ratio ${worst.errorRatio.toExponential(1)}`,
      link: `#/onts/${key}`,
    };
  }
  const fresh = onts.filter(({group}) => group === "unactivated");
  if (fresh.length > 0)
    yield {
      level: "new",
      title: `${counted(fresh.length, "unactivated ONT")}`,
      detail: "Connected, but not configured",
      link: "#/unactivated",
    };
}

/** Leads to the ONT itself when it is the only one. */
function few(level: Concern["level"], onts: readonly Ont[], what: string, detail: string, link: string): Concern {
  return onts.length === 1
    ? {level, title: `ONT ${onts[0]!.key} ${what}`, detail: onts[0]!.meaning, link: `#/onts/${onts[0]!.key}`}
    : {level, title: `${counted(onts.length, "ONT")} ${what}`, detail, link};
}

function names(onts: readonly Ont[]): string {
  const weakest = [...onts]
    .sort((a, b) => a.rssi! - b.rssi!)
    .slice(0, 3)
    .map(({key, rssi}) => `${key} (${rssi!.toFixed(1)} dBm)`);
  return `Weakest: ${weakest.join(", ")}`;
}
