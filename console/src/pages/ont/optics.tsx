import {useRef} from "preact/hooks";

import {dbm} from "../../model/format.ts";
import type {Ont} from "../../model/onts.ts";
import {limitsOf} from "../../model/optics.ts";
import {Chart} from "../../ui/chart.tsx";

const most = 300;
/** In s between points where nothing changes. */
const step = 2;
const lines = [{title: "Received", colour: "--accent"}];
/** The gauge's scale, in dBm. */
const from = -36;
const to = -4;

/** The light that the OLT receives of the ONT, against what its receiver can take. */
export function Optics({ont, odnClass}: {ont: Ont; odnClass: string | undefined}) {
  const series = useRef<[number[], (number | null)[]]>([[], []]);
  const seen = useRef<unknown>(undefined);
  const now = Date.now() / 1000;
  // An answer that is as before does not come: what it said goes on.
  if (seen.current !== ont.raw || now - (series.current[0].at(-1) ?? 0) >= step) {
    seen.current = ont.raw;
    series.current = [[...series.current[0], now].slice(-most), [...series.current[1], ont.rssi ?? null].slice(-most)];
  }
  const known = series.current[1].filter(value => value !== null);
  const range: [number, number] = known.length > 0 ? [Math.min(...known) - 2, Math.max(...known) + 2] : [from, to];
  const limits = limitsOf(odnClass);
  const at = (value: number) => `${(100 * (Math.max(from, Math.min(to, value)) - from)) / (to - from)}%`;
  return (
    <section class="card" aria-label="Optics">
      <header>
        <h2>Received power</h2>
        <small>ODN class {(odnClass ?? "b_plus").replace("_plus", "+").toUpperCase()}</small>
      </header>
      <div class="body">
        <p class="big">
          <strong class={ont.reception && ont.reception.level !== "good" ? `text-${ont.reception.level}` : ""}>
            {dbm(ont.rssi)}
          </strong>{" "}
          dBm
          {ont.reception && <span class={`text-${ont.reception.level}`}>{ont.reception.text}</span>}
        </p>
        <div class="gauge-scale" role="img" aria-label={`Limits ${limits.sensitivity} to ${limits.overload} dBm`}>
          <i class="allowed" style={{left: at(limits.sensitivity), right: `calc(100% - ${at(limits.overload)})`}} />
          {ont.rssi !== undefined && <i class="needle" style={{left: at(ont.rssi)}} />}
          <span style={{left: at(limits.sensitivity)}}>{dbm(limits.sensitivity)}</span>
          <span style={{left: at(limits.overload)}}>{dbm(limits.overload)}</span>
        </div>
        {ont.reception && <p class="muted small">{dbm(ont.reception.margin)} dB above the receiver's sensitivity</p>}
        <Chart
          label="Received power while you look"
          lines={lines}
          data={series.current}
          format={value => `${dbm(value)} dBm`}
          height={120}
          range={range}
        />
      </div>
    </section>
  );
}
