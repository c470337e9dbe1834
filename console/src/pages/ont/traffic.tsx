import type {Live} from "../../gateway/live.ts";
import type {PonCounters} from "../../model/counters.ts";
import {bitRate} from "../../model/format.ts";
import {Chart} from "../../ui/chart.tsx";
import {useSeries} from "./series.ts";

const rates = [
  {title: "Down", colour: "--accent"},
  {title: "Up", colour: "--new"},
];
const errors = [{title: "Bit error ratio", colour: "--bad"}];
const ratio = (value: number) => (value === 0 ? "0" : value.toExponential(1));

/** What flows and what goes wrong, as it happens. */
export function Traffic({live}: {live: Live<PonCounters[]>}) {
  const series = useSeries(live);
  return (
    <section class="card" aria-label="Traffic">
      <header>
        <h2>Traffic and errors</h2>
        <small>measured by the OLT, every 2 s</small>
      </header>
      {live.error && <p class="failure body">{live.error}</p>}
      <div class="body pair">
        <div>
          <h3>Rates</h3>
          <Chart label="Rates" lines={rates} data={series.traffic} format={bitRate} />
        </div>
        <div>
          <h3>Upstream bit errors</h3>
          <Chart
            label="Bit error ratio"
            lines={errors}
            data={[series.errors[0], series.errors[1]!]}
            format={ratio}
            range={errorRange(series.errors[1] as (number | null)[])}
          />
        </div>
      </div>
    </section>
  );
}

/** At least up to the ratio from which a signal counts as degraded. */
function errorRange(values: readonly (number | null)[]): [number, number] {
  return [0, Math.max(2e-7, ...values.map(value => value ?? 0)) * 1.1];
}
