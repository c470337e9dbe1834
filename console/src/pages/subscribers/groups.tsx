import {useLive} from "../../gateway/live.ts";
import {counted} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";
import {rangeText} from "../../model/ranges.ts";
import type {IgmpGroup} from "olt_api";
import {addressOrder, FoundTable} from "./found_table.tsx";

const none: IgmpGroup[] = [];

/** "PON ports 1-4, front port 2" of the members. */
function members({ports}: IgmpGroup): string {
  const numbers = (kind: string) =>
    ports.filter(({port}) => port.startsWith(kind)).map(({port}) => Number(port.split("/")[1]));
  const pon = numbers("pon-port");
  const others = ports.filter(({port}) => !port.startsWith("pon-port")).map(({port}) => port.replace(" 1/", " "));
  return [...(pon.length > 0 ? [`PON ${pon.length === 1 ? "port" : "ports"} ${rangeText(pon)}`] : []), ...others].join(
    ", ",
  );
}

export function Groups({text}: {text: string}) {
  const live = useLive<{igmp_groups: IgmpGroup[]}>({path: paths.groups, method: "get"}, 10);
  const sources = (row: IgmpGroup) =>
    `${row.filter_mode.toLowerCase()}${row.ip_sources.length > 0 ? ` ${row.ip_sources.map(({ip_address}) => ip_address).join(", ")}` : ""}`;
  return (
    <FoundTable
      label="Multicast groups"
      live={live}
      rows={live.data?.igmp_groups ?? none}
      text={text}
      keyOf={row => `${row.group_address} ${row.vlan}`}
      ontOf={() => ""}
      columns={[
        {
          id: "group",
          title: "Group",
          width: "minmax(110px, 1fr)",
          value: row => addressOrder(row.group_address),
          cell: row => <strong>{row.group_address}</strong>,
        },
        {
          id: "vlan",
          title: "VLAN",
          width: "64px",
          isNumber: true,
          value: row => row.vlan,
          cell: row => row.vlan,
        },
        {
          id: "count",
          title: "Members",
          width: "84px",
          isNumber: true,
          value: row => row.ports.length,
          cell: row => row.ports.length,
        },
        {id: "ports", title: "Ports", width: "minmax(160px, 2fr)", value: members, cell: members},
        {id: "sources", title: "Sources", width: "minmax(100px, 1fr)", value: sources, cell: sources},
        {
          id: "state",
          title: "",
          width: "90px",
          value: row => row.is_in_deletion_queue,
          cell: row => (row.is_in_deletion_queue ? <span class="text-warn">leaving</span> : ""),
        },
      ]}
      narrow={row => (
        <>
          <span class="line">
            <strong>{row.group_address}</strong>
            <span>VLAN {row.vlan}</span>
          </span>
          <span class="line muted">
            <span>{members(row)}</span>
            <span>{counted(row.ports.length, "member")}</span>
          </span>
        </>
      )}
    />
  );
}
