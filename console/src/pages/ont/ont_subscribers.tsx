import type {ComponentChildren} from "preact";

import {useLive} from "../../gateway/live.ts";
import {duration} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";
import type {DhcpSession, MacEntry, IgmpGroup, PppoeSession} from "olt_api";

/** Addresses, leases and sessions behind the ONT, and the groups of its PON port. */
export function OntSubscribers({port, ont}: {port: number; ont: number}) {
  const macs = useLive<MacEntry[]>({path: paths.macs, method: "get", indices: [`${port}/${ont}`]}, 10);
  const leases = useLive<{sessions: DhcpSession[]}>({path: paths.leases, method: "get"}, 30).data?.sessions;
  const sessions = useLive<{sessions: PppoeSession[]}>({path: paths.pppoe, method: "get"}, 30).data?.sessions;
  const groups = useLive<{igmp_groups: IgmpGroup[]}>({path: paths.groups, method: "get"}, 30).data?.igmp_groups;
  const isHere = (row: {pon_port_id: number; ont_id: number}) => row.pon_port_id === port && row.ont_id === ont;
  const ponPort = `pon-port 1/${port}`;
  return (
    <section class="card" aria-label="Subscribers">
      <header>
        <h2>Subscribers</h2>
      </header>
      <div class="body">
        <List
          title="Leases"
          rows={leases?.filter(isHere)}
          row={lease => (
            <tr key={lease.mac}>
              <td>{lease.ip}</td>
              <td class="mono">{lease.mac}</td>
              <td class="muted" title={`Service ${lease.service_id}`}>
                VLAN {lease.outer_vid}
              </td>
              <td class="number muted">{duration(lease.life_time_msec / 1000)}</td>
            </tr>
          )}
        />
        <List
          title="PPPoE sessions"
          rows={sessions?.filter(isHere)}
          row={session => (
            <tr key={session.client_mac}>
              <td>{session.session_id > 0 ? session.session_id : <span class="text-bad">blocked</span>}</td>
              <td class="mono">{session.client_mac}</td>
              <td class="muted">GEM {session.gem_port}</td>
              <td class="number muted">
                {session.session_id > 0 ? duration(session.duration_sec) : `${session.unblock_rest_sec} s left`}
              </td>
            </tr>
          )}
        />
        <List
          title="Addresses"
          rows={macs.data}
          row={mac => (
            <tr key={`${mac.mac} ${mac.svid}`}>
              <td class="mono">{mac.mac}</td>
              <td>
                VLAN {mac.svid}
                {mac.cvid > 0 && `.${mac.cvid}`}
              </td>
              <td class="muted">GEM {mac.gem}</td>
              <td class="number muted">{mac.type}</td>
            </tr>
          )}
        />
        <List
          title={`Groups on PON port ${port}`}
          rows={groups?.filter(({ports}) => ports.some(member => member.port === ponPort))}
          row={group => (
            <tr key={`${group.group_address} ${group.vlan}`}>
              <td>{group.group_address}</td>
              <td>VLAN {group.vlan}</td>
              <td class="muted">{group.filter_mode.toLowerCase()}</td>
              <td />
            </tr>
          )}
        />
      </div>
    </section>
  );
}

function List<Row>({title, rows, row}: {title: string; rows?: readonly Row[]; row: (row: Row) => ComponentChildren}) {
  return (
    <div class="list-part">
      <h3>
        {title} <span class="muted">{rows?.length ?? "…"}</span>
      </h3>
      {rows && rows.length > 0 && (
        <div class="scrolls short">
          <table class="plain">
            <tbody>{rows.map(row)}</tbody>
          </table>
        </div>
      )}
    </div>
  );
}
