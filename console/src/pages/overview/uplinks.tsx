import type {Rates} from "../../model/counters.ts";
import type {FrontPortState} from "olt_api";
import {bitRate} from "../../model/format.ts";
import {Status, type Level} from "../../ui/status.tsx";

const levels: Readonly<Record<FrontPortState["status"], Level>> = {UP: "good", DOWN: "off", SHUTDOWN: "off"};
const texts: Readonly<Record<FrontPortState["status"], string>> = {UP: "Up", DOWN: "Down", SHUTDOWN: "Shut"};

export function Uplinks({ports, rates}: {ports: readonly FrontPortState[]; rates: ReadonlyMap<string, Rates>}) {
  const sum = (way: "up" | "down") => [...rates.values()].reduce((total, rate) => total + rate[way], 0);
  return (
    <section class="card uplinks" aria-label="Uplinks">
      <header>
        <h2>Uplinks</h2>
        {rates.size > 0 && (
          <small title="Traffic of all ONTs over the last 30 s">
            ↑ {bitRate(sum("up"))} &nbsp; ↓ {bitRate(sum("down"))}
          </small>
        )}
      </header>
      <ul>
        {ports.map(port => (
          <li key={port.port}>
            <a href={`#/configuration/ZebGCfg.switch_config.front_port/${port.port}`} title={describe(port)}>
              <span class="muted">{port.port}</span>
              <Status level={port.status === "DOWN" && port.sfp_condition === "Present" ? "warn" : levels[port.status]}>
                {texts[port.status]}
              </Status>
              <span class="number">{port.status === "UP" ? port.speed : ""}</span>
            </a>
          </li>
        ))}
      </ul>
    </section>
  );
}

function describe(port: FrontPortState): string {
  if (!port.sfp) return `Front port ${port.port}: no module`;
  const light = port.eddi ? `, ${port.eddi.temperature_c.toFixed(0)} °C, ${port.eddi.tx_power_mw.toFixed(2)} mW` : "";
  return `Front port ${port.port}: ${port.sfp.vendor} ${port.sfp.part_number}${light}`;
}
