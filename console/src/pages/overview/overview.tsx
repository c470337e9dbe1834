import {useFrontPorts, usePonPortConfigurations, usePonPorts, useSystem} from "../../gateway/device.ts";
import {useOnts} from "../../gateway/onts.ts";
import {useRates} from "../../gateway/rates.ts";
import {concernsOf} from "../../model/attention.ts";
import {count} from "../../model/format.ts";
import {groups} from "../../model/onts.ts";
import {countGroups, summariseByPort} from "../../model/summary.ts";
import {Status} from "../../ui/status.tsx";
import {Attention} from "./attention.tsx";
import {Board} from "./board.tsx";
import {PonPorts} from "./pon_ports.tsx";
import {Uplinks} from "./uplinks.tsx";

/** The whole OLT on one screen. */
export function Overview() {
  const {data: system} = useSystem();
  const ponPorts = usePonPorts().data ?? [];
  const frontPorts = useFrontPorts().data ?? [];
  const configurations = usePonPortConfigurations().data ?? [];
  const {rows, isKnown} = useOnts();
  const rates = useRates();
  const byPort = summariseByPort(rows);
  const counts = countGroups(rows);
  const concerns = concernsOf({onts: rows, byPort, ponPorts, frontPorts, system, rates});
  return (
    <div class="page overview">
      <div class="page-head">
        <h1>Overview</h1>
        <ul class="totals" aria-label="ONTs by state">
          {groups
            .filter(({id}) => counts[id] > 0)
            .map(({id, title, level}) => (
              <li key={id}>
                <a href={id === "unactivated" ? "#/unactivated" : `#/onts?state=${id}`}>
                  <Status level={level}>
                    <strong>{count(counts[id])}</strong> {title.toLowerCase()}
                  </Status>
                </a>
              </li>
            ))}
        </ul>
      </div>
      <div class="overview-grid">
        <PonPorts ports={ponPorts} byPort={byPort} rates={rates} configurations={configurations} />
        <Attention concerns={concerns} isKnown={isKnown} />
        <Uplinks ports={frontPorts} rates={rates} />
        <Board system={system} />
      </div>
    </div>
  );
}
