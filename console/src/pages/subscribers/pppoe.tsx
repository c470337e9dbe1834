import {useSerialFormat} from "../../gateway/device.ts";
import {useLive} from "../../gateway/live.ts";
import {duration} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";
import type {PppoeSession} from "olt_api";
import {Status} from "../../ui/status.tsx";
import {FoundTable, ontColumns} from "./found_table.tsx";

const none: PppoeSession[] = [];

export function Pppoe({text}: {text: string}) {
  const live = useLive<{sessions: PppoeSession[]}>({path: paths.pppoe, method: "get"}, 15);
  const format = useSerialFormat();
  const state = (row: PppoeSession) =>
    row.session_id > 0 ? (
      <Status level="good">Up {duration(row.duration_sec)}</Status>
    ) : (
      <Status level="bad">Blocked, {row.unblock_rest_sec} s left</Status>
    );
  return (
    <FoundTable
      label="PPPoE sessions"
      live={live}
      rows={live.data?.sessions ?? none}
      text={text}
      keyOf={row => `${row.client_mac} ${row.pon_port_id} ${row.ont_id} ${row.gem_port}`}
      ontOf={row => `${row.pon_port_id}/${row.ont_id}`}
      columns={[
        {
          id: "mac",
          title: "Client",
          width: "minmax(140px, 1fr)",
          value: row => row.client_mac,
          cell: row => <strong class="mono">{row.client_mac}</strong>,
        },
        ...ontColumns(format),
        {
          id: "session",
          title: "Session",
          width: "84px",
          isNumber: true,
          value: row => row.session_id,
          cell: row => row.session_id || "–",
        },
        {
          id: "gem",
          title: "GEM port",
          width: "84px",
          isNumber: true,
          value: row => row.gem_port,
          cell: row => row.gem_port,
        },
        {id: "state", title: "State", width: "minmax(170px, 1fr)", value: row => row.duration_sec, cell: state},
      ]}
      narrow={row => (
        <>
          <span class="line">
            <strong class="mono">{row.client_mac}</strong>
            <span>
              {row.pon_port_id}/{row.ont_id}
            </span>
          </span>
          <span class="line">
            {state(row)}
            <span class="muted">GEM port {row.gem_port}</span>
          </span>
        </>
      )}
    />
  );
}
