import type {OntState} from "olt_api";

import {paths} from "../model/paths.ts";
import {ontOf, type Ont} from "../model/onts.ts";
import {usePonPortConfigurations, useSerialFormat} from "./device.ts";
import {useLive} from "./live.ts";

const every = 5;

/** Answers that were made ready once, for all components that look at them. */
const made = new WeakMap<OntState[], {of: string; rows: Ont[]}>();

/** All ONTs, those that nobody configured too. */
export function useOnts(): {rows: readonly Ont[]; isKnown: boolean; error?: string; at: number} {
  const live = useLive<OntState[]>({path: paths.onts, method: "get"}, every);
  const format = useSerialFormat();
  const ports = usePonPortConfigurations().data;
  if (!live.data) return {rows: [], isKnown: false, error: live.error, at: live.at};
  const of = `${format} ${ports?.map(({odn_class}) => odn_class).join() ?? ""}`;
  let rows = made.get(live.data);
  if (rows?.of !== of) {
    rows = {of, rows: live.data.map(raw => ontOf(raw, format, port => ports?.[port - 1]?.odn_class))};
    made.set(live.data, rows);
  }
  return {rows: rows.rows, isKnown: true, error: live.error, at: live.at};
}
