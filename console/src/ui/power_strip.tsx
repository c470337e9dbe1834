import type {Level} from "../model/optics.ts";
import type {Ont} from "../model/onts.ts";

export const strongest = -8;
export const weakest = -34;
const step = 0.5;

/** How many ONTs are received with which power, as bars of half a dB; the colour is the worst of a bar. */
export function PowerStrip({onts, height = 20}: {onts: readonly Ont[]; height?: number}) {
  const bins = Math.round((strongest - weakest) / step);
  const counts = Array<number>(bins).fill(0);
  const levels = Array<Level>(bins).fill("good");
  let most = 1;
  for (const {rssi, reception} of onts) {
    if (rssi === undefined || !reception) continue;
    const bin = Math.max(0, Math.min(bins - 1, Math.floor((rssi - weakest) / step)));
    most = Math.max(most, ++counts[bin]!);
    if (reception.level !== "good" && levels[bin] !== "bad") levels[bin] = reception.level;
  }
  const bars = (level: Level) =>
    counts
      .map((number, bin) => {
        if (number === 0 || levels[bin] !== level) return "";
        const tall = Math.max(3, height * Math.sqrt(number / most));
        return `M${bin * 4 + 0.5} ${height}v${-tall}h3v${tall}z`;
      })
      .join("");
  const known = onts.flatMap(({rssi}) => rssi ?? []);
  const label =
    known.length === 0
      ? "nothing received"
      : `received power from ${Math.min(...known).toFixed(1)} to ${Math.max(...known).toFixed(1)} dBm`;
  return (
    <svg
      class="power-strip"
      viewBox={`0 0 ${bins * 4} ${height}`}
      preserveAspectRatio="none"
      role="img"
      aria-label={label}>
      <title>{label}</title>
      {(["good", "warn", "bad"] as const).map(level => (
        <path key={level} class={level} d={bars(level)} />
      ))}
    </svg>
  );
}
