import type {Group, Ont} from "./onts.ts";
import type {Level} from "./optics.ts";

export interface OntFilter {
  text: string;
  group: Group | "";
  port: number;
  optics: Level | "";
  /** Received power in dBm: from, below. */
  power?: readonly [number, number];
}

export type SortKey = "ont" | "serial" | "state" | "rssi" | "distance" | "model" | "software" | "description";

/** Those that fit; of several words all must be found. Filtering by `but` alone is left out, for counting its choices. */
export function filtered(onts: readonly Ont[], filter: OntFilter, but?: keyof OntFilter): Ont[] {
  const words = filter.text
    .toLowerCase()
    .split(/\s+/)
    .filter(word => word !== "");
  const {group, port, optics, power} = filter;
  return onts.filter(
    ont =>
      (but === "group" || group === "" || ont.group === group) &&
      (port === 0 || ont.port === port) &&
      (optics === "" || ont.reception?.level === optics) &&
      (but === "power" || !power || (ont.rssi !== undefined && ont.rssi >= power[0] && ont.rssi < power[1])) &&
      words.every(word => ont.search.includes(word)),
  );
}

const byPlace = (a: Ont, b: Ont) =>
  a.port - b.port || (a.ont || 999) - (b.ont || 999) || compareTexts(a.serialText, b.serialText);
const compareTexts = (a: string, b: string) => (a < b ? -1 : a > b ? 1 : 0);
const text = (of: (ont: Ont) => string) => (a: Ont, b: Ont) => compareTexts(of(a), of(b));
/** Those without a value stand last, whichever way the others are sorted. */
const number = (of: (ont: Ont) => number | undefined) => (a: Ont, b: Ont, sign: number) => {
  const [left, right] = [of(a), of(b)];
  if (left === undefined || right === undefined)
    return sign * (Number(left === undefined) - Number(right === undefined));
  return left - right;
};

const orders: Readonly<Record<SortKey, (a: Ont, b: Ont, sign: number) => number>> = {
  ont: byPlace,
  serial: text(({serialText}) => serialText),
  state: text(({state}) => state),
  rssi: number(({rssi}) => rssi),
  distance: number(({distance}) => distance),
  model: text(({model}) => model),
  software: text(({software}) => software),
  description: text(({description}) => description),
};

export function sorted(onts: readonly Ont[], by: SortKey, descending: boolean): Ont[] {
  const sign = descending ? -1 : 1;
  const order = orders[by];
  return [...onts].sort((a, b) => sign * order(a, b, sign) || byPlace(a, b));
}
