import {ratesBetween, type PonCounters, type Rates} from "../model/counters.ts";
import {paths} from "../model/paths.ts";
import {useConstants} from "./device.ts";
import {useLive} from "./live.ts";

/** In s: the counters of a whole plant are the dearest thing that the page asks for. */
const every = 30;
/** Until the first two readings are there. */
const everyAtFirst = 5;
const ontsPerPort = 256;

interface Reading {
  counters: PonCounters[];
  at: number;
}

let before: Reading | undefined;
let latest: Reading | undefined;
let rates: ReadonlyMap<string, Rates> = new Map();

function compare(from: Reading, to: Reading): ReadonlyMap<string, Rates> {
  const found = new Map<string, Rates>();
  to.counters.forEach((now, index) => {
    const then = from.counters[index];
    if (!then || !now["BIP Units"]) return;
    const grown = ratesBetween(then, now, (to.at - from.at) / 1000);
    if (grown) found.set(`${Math.floor(index / ontsPerPort) + 1}/${(index % ontsPerPort) + 1}`, grown);
  });
  return found;
}

/** What flows and what goes wrong, by ONT ("3/17"), over the time between the last two readings. */
export function useRates(): ReadonlyMap<string, Rates> {
  const ports = useConstants().data?.PON_PORT_COUNT;
  const live = useLive<PonCounters[]>(
    ports ? {path: `${paths.counters}olt_side.pon`, method: "get", indices: [`1-${ports}`]} : undefined,
    before ? every : everyAtFirst,
  );
  if (live.data && live.data !== latest?.counters) {
    before = latest;
    latest = {counters: live.data, at: live.at};
    if (before) rates = compare(before, latest);
  }
  return rates;
}
