import {useState} from "preact/hooks";

import {useLive} from "../../gateway/live.ts";
import type {PonCounters} from "../../model/counters.ts";
import {count} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";

const kinds: readonly (readonly [kind: string, title: string])[] = [
  ["olt_side.pon", "PON, measured by the OLT"],
  ["olt_side.gem_port", "GEM ports, measured by the OLT"],
  ["ont_side.gem_port_nctp_performance_monitoring", "GEM frames, 15 min"],
  ["ont_side.gem_port_performance_monitoring", "GEM ports, 15 min"],
  ["ont_side.ethernet_performance_monitoring_history_data", "Ethernet errors, 15 min"],
  ["ont_side.ethernet_performance_monitoring_history_data_2", "Ethernet PPPoE filter, 15 min"],
  ["ont_side.ethernet_performance_monitoring_history_data_3", "Ethernet frames, 15 min"],
  ["ont_side.ethernet_frame_extended_performance_monitoring", "Ethernet frames by direction, 15 min"],
  ["ont_side.gal_ethernet_performance_monitoring_history_data", "GAL Ethernet, 15 min"],
  ["ont_side.fec_performance_monitoring_history_data", "Downstream FEC, 15 min"],
];

type Tree = {[key: string]: number | Tree};

/** Groups of numbers by label, whatever they are nested in: "Upstream › 1". */
function groupsOf(tree: Tree, name = ""): {name: string; values: Record<string, number>}[] {
  const values = Object.entries(tree).filter((entry): entry is [string, number] => typeof entry[1] === "number");
  const below = Object.entries(tree).flatMap(([key, part]) =>
    typeof part === "number"
      ? []
      : groupsOf(part, name === "" ? key : `${name.replace(/ counters for .*/, "")} › ${key}`),
  );
  return [...(values.length > 0 ? [{name, values: Object.fromEntries(values)}] : []), ...below];
}

/** All counters of the ONT, a kind at a time. */
export function Counters({port, ont, pon}: {port: number; ont: number; pon?: PonCounters}) {
  const [kind, setKind] = useState(kinds[0]![0]);
  const isPon = kind === kinds[0]![0];
  const {data, error} = useLive<Tree[]>(
    isPon ? undefined : {path: paths.counters + kind, method: "get", indices: [String(port), String(ont)]},
    10,
  );
  const groups = groupsOf(((isPon ? pon : data?.[0]) as Tree) ?? {});
  const labels = [...new Set(groups.flatMap(({values}) => Object.keys(values)))];
  return (
    <section class="card" aria-label="Counters">
      <header>
        <h2>Counters</h2>
        <select aria-label="Kind of counters" value={kind} onChange={event => setKind(event.currentTarget.value)}>
          {kinds.map(([id, title]) => (
            <option key={id} value={id}>
              {title}
            </option>
          ))}
        </select>
      </header>
      <div class="body scrolls">
        {error && <p class="failure">{error}</p>}
        {groups.length === 0 ? (
          <p class="empty">No counters of this kind.</p>
        ) : (
          <table class={`plain counters${groups.length === 1 ? " single" : ""}`}>
            {groups.length > 1 && (
              <thead>
                <tr>
                  <th />
                  {groups.map(({name}) => (
                    <th key={name} class="number">
                      {name}
                    </th>
                  ))}
                </tr>
              </thead>
            )}
            <tbody>
              {labels.map(label => (
                <tr key={label}>
                  <td class="muted">{label}</td>
                  {groups.map(({name, values}) => (
                    <td key={name} class="number">
                      {values[label] === undefined ? "–" : count(values[label])}
                    </td>
                  ))}
                </tr>
              ))}
            </tbody>
          </table>
        )}
      </div>
    </section>
  );
}
