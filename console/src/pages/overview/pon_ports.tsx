import type {Rates} from "../../model/counters.ts";
import type {PonPort, PonPortState} from "olt_api";
import {bitRate} from "../../model/format.ts";
import type {PortSummary} from "../../model/summary.ts";
import {PowerStrip, strongest, weakest} from "../../ui/power_strip.tsx";
import {GroupBar, sentence, Status, type Level} from "../../ui/status.tsx";

interface Properties {
  ports: readonly PonPortState[];
  byPort: ReadonlyMap<number, PortSummary>;
  rates: ReadonlyMap<string, Rates>;
  configurations: readonly PonPort[];
}

const levels: Readonly<Record<PonPortState["state"], Level>> = {
  ACTIVE: "good",
  STARTING: "busy",
  FAULT: "bad",
  NO_MODULE: "off",
  DISABLED: "off",
  UNKNOWN: "warn",
};

export function PonPorts({ports, byPort, rates, configurations}: Properties) {
  const most = Math.max(1, ...[...byPort.values()].map(({onts}) => onts.length));
  const traffic = (port: number, way: "up" | "down") =>
    (byPort.get(port)?.onts ?? []).reduce((sum, {key}) => sum + (rates.get(key)?.[way] ?? 0), 0);
  return (
    <section class="card pon-ports" aria-label="PON ports">
      <header>
        <h2>PON ports</h2>
      </header>
      <div class="pon-head" aria-hidden="true">
        <span>Port</span>
        <span>State</span>
        <span class="number">Online</span>
        <span>ONTs</span>
        <span class="strip-scale">
          <i>−{-weakest}</i>
          <i>dBm</i>
          <i>−{-strongest}</i>
        </span>
        <span class="number">Up</span>
        <span class="number">Down</span>
        <span class="number">Module</span>
      </div>
      <ul>
        {ports.map(port => {
          const there = byPort.get(port.port);
          const description = configurations[port.port - 1]?.description;
          return (
            <li key={port.port}>
              <a class="pon-row" href={`#/onts?port=${port.port}`} title={description || undefined}>
                <strong>{port.port}</strong>
                <Status level={levels[port.state]}>{sentence(port.state)}</Status>
                <span class="number">
                  {there ? (
                    <>
                      {there.counts.online}
                      <span class="muted">/{there.configured}</span>
                    </>
                  ) : (
                    "–"
                  )}
                </span>
                {there ? <GroupBar counts={there.counts} of={most} /> : <span />}
                <PowerStrip onts={there?.onts ?? []} />
                <span class="number muted">{rates.size > 0 && there ? bitRate(traffic(port.port, "up")) : "–"}</span>
                <span class="number muted">{rates.size > 0 && there ? bitRate(traffic(port.port, "down")) : "–"}</span>
                <span class="number muted">{port.eddi ? `${port.eddi.temperature_c.toFixed(0)} °C` : "–"}</span>
              </a>
            </li>
          );
        })}
      </ul>
    </section>
  );
}
