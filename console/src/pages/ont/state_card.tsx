import {clock, duration} from "../../model/format.ts";
import type {Ont} from "../../model/onts.ts";
import {OntStatus} from "../../ui/status.tsx";
import {useHistory} from "./history.ts";

export function StateCard({ont}: {ont: Ont}) {
  const history = useHistory(ont);
  const info = ont.raw.ont_info;
  return (
    <section class="card" aria-label="State">
      <header>
        <h2>State</h2>
      </header>
      <div class="body">
        <p class="meaning">{ont.meaning}.</p>
        <dl class="facts">
          <dt>Serial</dt>
          <dd class="mono">{ont.serialText || "–"}</dd>
          <dt>Model</dt>
          <dd>
            {ont.model || "–"} {info && <span class="muted">{info.hardware_version}</span>}
          </dd>
          <dt>Software</dt>
          <dd>{ont.software || "–"}</dd>
          <dt>Distance</dt>
          <dd>{ont.distance === undefined ? "–" : `${(ont.distance / 1000).toFixed(2)} km`}</dd>
          <dt>Equalisation delay</dt>
          <dd>{info?.equalization_delay ?? "–"}</dd>
          <dt>Upstream FEC</dt>
          <dd>{info ? (info.fec_state ? "on" : "off") : "–"}</dd>
          <dt>Alloc-IDs</dt>
          <dd>{ont.raw.alloc_ids?.join(", ") || "–"}</dd>
        </dl>
        <h3 class="above">While you look</h3>
        <ol class="history">
          {history.map(({at, state, group}, index) => (
            <li key={at}>
              <span class="muted">{clock(at)}</span>
              <OntStatus group={group} state={state} />
              <span class="muted number">{index === 0 ? "" : duration((history[index - 1]!.at - at) / 1000)}</span>
            </li>
          ))}
        </ol>
      </div>
    </section>
  );
}
