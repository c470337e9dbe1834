import type {SystemState} from "olt_api";
import {Meter, Status} from "../../ui/status.tsx";

/** Versions, load, memory, temperatures, fans and supplies. */
export function Board({system}: {system?: SystemState}) {
  if (!system) return <section class="card board" />;
  const {device_info: device, ram, disk, avg_load: load} = system;
  const used = (space: {free: number; total: number}) => space.total - space.free;
  const share = (space: {free: number; total: number}) => Math.round((100 * used(space)) / Math.max(1, space.total));
  return (
    <section class="card board" aria-label="Device">
      <header>
        <h2>Device</h2>
        <small>{system.factory_info.serial_number}</small>
      </header>
      <div class="body board-facts">
        <dl class="facts">
          <dt>Uptime</dt>
          <dd>{device.uptime}</dd>
          <dt>Firmware</dt>
          <dd>
            {device.active_fw}
            {device.next_boot_fw !== device.active_fw && (
              <span class="text-warn"> → {device.next_boot_fw} at next boot</span>
            )}
          </dd>
          <dt>Load</dt>
          <dd>
            {load["1m"].toFixed(2)}{" "}
            <span class="muted">
              {load["5m"].toFixed(2)} {load["15m"].toFixed(2)}
            </span>
          </dd>
          <dt>Memory</dt>
          <dd class="gauge">
            <Meter value={used(ram)} of={ram.total} level={share(ram) > 90 ? "warn" : "good"} label="Memory used" />
            {share(ram)} %
          </dd>
          <dt>Disk</dt>
          <dd class="gauge">
            <Meter value={used(disk)} of={disk.total} level={share(disk) > 90 ? "warn" : "good"} label="Disk used" />
            {share(disk)} %
          </dd>
        </dl>
        <dl class="facts">
          {system.temp_sensors.map(({id, value}) => (
            <>
              <dt>{id.trim()}</dt>
              <dd class={value >= 70 ? "text-bad" : ""}>{value} °C</dd>
            </>
          ))}
        </dl>
        <dl class="facts">
          {system.fans.map((fan, index) => (
            <>
              <dt>Fan {index + 1}</dt>
              <dd>
                {!fan.is_present ? (
                  <Status level="off">missing</Status>
                ) : fan.is_fault ? (
                  <Status level="bad">stands still</Status>
                ) : (
                  `${fan.rate_rps} rps`
                )}
              </dd>
            </>
          ))}
          {system.power_sources.map((supply, index) => (
            <>
              <dt>Supply {index + 1}</dt>
              <dd>
                {!supply.is_present ? (
                  <span class="muted">none</span>
                ) : (
                  <Status level={supply.is_power_good ? "good" : "bad"}>
                    {supply.is_power_good ? (supply.type ?? "good") : "no power"}
                  </Status>
                )}
              </dd>
            </>
          ))}
        </dl>
      </div>
    </section>
  );
}
