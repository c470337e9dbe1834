import {useLive} from "../../gateway/live.ts";
import {paths} from "../../model/paths.ts";
import type {MacEntry} from "olt_api";
import {FoundTable, placeOrder} from "./found_table.tsx";

const none: MacEntry[] = [];

export function Macs({text}: {text: string}) {
  const live = useLive<MacEntry[]>({path: paths.macs, method: "get"}, 15);
  const where = ({ont, port}: MacEntry) => (ont !== "" ? `ONT ${ont}` : port.replace(" 1/", " ").replace("-", " "));
  const order = (row: MacEntry) => {
    const [port, ont] = row.ont.split("/").map(Number);
    return row.ont === "" ? row.port : placeOrder(port!, ont!);
  };
  const vlans = ({svid, cvid}: MacEntry) => `${svid}${cvid > 0 ? `.${cvid}` : ""}`;
  return (
    <FoundTable
      label="MAC addresses"
      live={live}
      rows={live.data ?? none}
      text={text}
      keyOf={row => `${row.mac} ${row.svid} ${row.port}`}
      ontOf={row => row.ont}
      columns={[
        {
          id: "mac",
          title: "Address",
          width: "minmax(140px, 1fr)",
          value: row => row.mac,
          cell: row => <strong class="mono">{row.mac}</strong>,
        },
        {id: "where", title: "Behind", width: "minmax(110px, 1fr)", value: order, cell: where},
        {id: "vlan", title: "VLAN", width: "84px", isNumber: true, value: vlans, cell: vlans},
        {
          id: "uvid",
          title: "User VLAN",
          width: "90px",
          isNumber: true,
          value: row => row.uvid,
          cell: row => row.uvid || "–",
        },
        {
          id: "gem",
          title: "GEM port",
          width: "84px",
          isNumber: true,
          value: row => row.gem,
          cell: row => row.gem || "–",
        },
        {id: "type", title: "Kind", width: "90px", value: row => row.type, cell: row => row.type},
      ]}
      narrow={row => (
        <>
          <span class="line">
            <strong class="mono">{row.mac}</strong>
            <span>{where(row)}</span>
          </span>
          <span class="line muted">
            <span>VLAN {vlans(row)}</span>
            <span>{row.type}</span>
          </span>
        </>
      )}
    />
  );
}
