import {useSerialFormat} from "../../gateway/device.ts";
import {useLive} from "../../gateway/live.ts";
import {duration} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";
import type {DhcpSession} from "olt_api";
import {addressOrder, FoundTable, ontColumns} from "./found_table.tsx";

const none: DhcpSession[] = [];

export function Leases({text}: {text: string}) {
  const live = useLive<{sessions: DhcpSession[]}>({path: paths.leases, method: "get"}, 15);
  const format = useSerialFormat();
  return (
    <FoundTable
      label="DHCP leases"
      live={live}
      rows={live.data?.sessions ?? none}
      text={text}
      keyOf={({mac, pon_port_id, ont_id, service_id}) => `${mac} ${pon_port_id} ${ont_id} ${service_id}`}
      ontOf={({pon_port_id, ont_id}) => `${pon_port_id}/${ont_id}`}
      columns={[
        {
          id: "ip",
          title: "IP address",
          width: "minmax(110px, 1fr)",
          value: ({ip}) => addressOrder(ip),
          cell: ({ip}) => <strong>{ip}</strong>,
        },
        {
          id: "mac",
          title: "Client",
          width: "minmax(140px, 1fr)",
          value: ({mac}) => mac,
          cell: ({mac}) => <span class="mono">{mac}</span>,
        },
        ...ontColumns(format),
        {
          id: "service",
          title: "Service",
          width: "72px",
          isNumber: true,
          value: row => row.service_id,
          cell: row => row.service_id,
        },
        {
          id: "vlan",
          title: "VLAN",
          width: "64px",
          isNumber: true,
          value: row => row.outer_vid,
          cell: row => row.outer_vid,
        },
        {
          id: "gem",
          title: "GEM port",
          width: "84px",
          isNumber: true,
          value: row => row.gem_port,
          cell: row => row.gem_port,
        },
        {
          id: "left",
          title: "Left",
          width: "104px",
          isNumber: true,
          value: row => row.life_time_msec,
          cell: row => duration(row.life_time_msec / 1000),
        },
      ]}
      narrow={row => (
        <>
          <span class="line">
            <strong>{row.ip}</strong>
            <span>
              {row.pon_port_id}/{row.ont_id}
            </span>
          </span>
          <span class="line muted">
            <span class="mono">{row.mac}</span>
            <span>{duration(row.life_time_msec / 1000)} left</span>
          </span>
        </>
      )}
    />
  );
}
