import type {OltPonCounters} from "olt_api";

/** The OLT's counters of one ONT's share of the PON. */
export type PonCounters = Partial<OltPonCounters>;

export interface Rates {
  /** From the ONT, in bit/s. */
  up: number;
  /** To the ONT, in bit/s. */
  down: number;
  /** Share of wrong bits upstream, as bit-interleaved parity has it. */
  errorRatio: number;
  uncorrectable: number;
}

/** Bit error ratio from which a signal counts as degraded, and as failed [G.984.3: SDi, SFi]. */
export const degraded = 1e-7;
export const failed = 1e-5;

/** What happened between two readings; undefined when the counters began anew, or there are none. */
export function ratesBetween(before: PonCounters, now: PonCounters, seconds: number): Rates | undefined {
  const grown = (name: keyof PonCounters) => (now[name] ?? 0) - (before[name] ?? 0);
  const [up, down, units] = [grown("Rx Bytes"), grown("Tx Bytes"), grown("BIP Units")];
  if (seconds <= 0 || up < 0 || down < 0 || units < 0) return undefined;
  return {
    up: (8 * up) / seconds,
    down: (8 * down) / seconds,
    errorRatio: units > 0 ? grown("BIP Errors") / (8 * units) : 0,
    uncorrectable: grown("FEC Codewords Uncorrected") / seconds,
  };
}
