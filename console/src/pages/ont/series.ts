import {useRef} from "preact/hooks";
import type uPlot from "uplot";

import {ratesBetween, type PonCounters} from "../../model/counters.ts";
import type {Live} from "../../gateway/live.ts";

const most = 300;

export interface Series {
  /** Bit/s from and to the ONT. */
  traffic: uPlot.AlignedData;
  /** Wrong bits of all, and code words per second that could not be mended. */
  errors: uPlot.AlignedData;
}

type Columns = [number[], (number | null)[], (number | null)[]];

/** What the readings of an ONT's counters make of rates, while one looks. */
export function useSeries(live: Live<PonCounters[]>): Series {
  const kept = useRef({
    at: 0,
    counters: undefined as PonCounters | undefined,
    traffic: [[], [], []] as Columns,
    errors: [[], [], []] as Columns,
  });
  const now = live.data?.[0];
  const {current} = kept;
  if (now && live.at !== current.at) {
    const rates = current.counters && ratesBetween(current.counters, now, (live.at - current.at) / 1000);
    if (current.counters) {
      current.traffic = append(current.traffic, live.at / 1000, rates?.down ?? null, rates?.up ?? null);
      current.errors = append(current.errors, live.at / 1000, rates?.errorRatio ?? null, rates?.uncorrectable ?? null);
    }
    current.at = live.at;
    current.counters = now;
  }
  return {traffic: current.traffic, errors: current.errors};
}

function append([times, first, second]: Columns, time: number, a: number | null, b: number | null): Columns {
  return [[...times, time].slice(-most), [...first, a].slice(-most), [...second, b].slice(-most)];
}
