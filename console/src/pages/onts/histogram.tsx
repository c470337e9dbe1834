import {dbm} from "../../model/format.ts";
import type {Ont} from "../../model/onts.ts";
import type {Level} from "../../model/optics.ts";
import {strongest, weakest} from "../../ui/power_strip.tsx";
import {changeQuery} from "../../ui/route.ts";

const bars = strongest - weakest;
const height = 56;

/** Received power of the ONTs shown, a bar for each dB; a bar that is pressed filters by its dB. */
export function Histogram({onts, power}: {onts: readonly Ont[]; power?: readonly [number, number]}) {
  const counts = Array.from({length: bars}, () => ({good: 0, warn: 0, bad: 0, all: 0}));
  for (const {rssi, reception} of onts) {
    if (rssi === undefined || !reception) continue;
    const bin = counts[Math.max(0, Math.min(bars - 1, Math.floor(rssi - weakest)))]!;
    bin[reception.level]++;
    bin.all++;
  }
  const most = Math.max(1, ...counts.map(({all}) => all));
  const press = (from: number) => changeQuery({power: power?.[0] === from ? "" : `${from}to${from + 1}`});
  return (
    <div class="histogram" role="group" aria-label="Filter by received power">
      <div class="bars" style={{height: `${height}px`}}>
        {counts.map((bin, index) => {
          const from = weakest + index;
          const text = `${bin.all} ONTs from ${dbm(from)} to ${dbm(from + 1)} dBm`;
          return (
            <button
              key={from}
              title={text}
              aria-label={text}
              aria-pressed={power?.[0] === from}
              disabled={bin.all === 0}
              onClick={() => press(from)}>
              {(["good", "warn", "bad"] as Level[]).map(
                level =>
                  bin[level] > 0 && (
                    <i
                      key={level}
                      class={level}
                      style={{height: `${Math.max(2, (bin[level] / most) * (height - 4))}px`}}
                    />
                  ),
              )}
            </button>
          );
        })}
      </div>
      <div class="scale" aria-hidden="true">
        <span>{dbm(weakest)}</span>
        <span>Received power, dBm</span>
        <span>{dbm(strongest)}</span>
      </div>
    </div>
  );
}
