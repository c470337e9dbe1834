import type {ComponentChildren} from "preact";
import {useMemo, useState} from "preact/hooks";

import type {Live} from "../../gateway/live.ts";
import {count} from "../../model/format.ts";
import {serialText, type Serial, type SerialFormat} from "../../model/serial.ts";
import {go} from "../../ui/route.ts";
import {VirtualTable, type Column, type Sorting} from "../../ui/virtual_table.tsx";

export interface FoundColumn<Row> extends Column<Row> {
  /** What it is sorted by. */
  value: (row: Row) => string | number;
}

interface Properties<Row> {
  label: string;
  live: Live<unknown>;
  rows: readonly Row[];
  keyOf: (row: Row) => string;
  /** "3/17", or empty. */
  ontOf: (row: Row) => string;
  columns: readonly FoundColumn<Row>[];
  text: string;
  narrow: (row: Row) => ComponentChildren;
}

/** A table that is searched through and leads to ONTs. */
export function FoundTable<Row>({label, live, rows, keyOf, ontOf, columns, text, narrow}: Properties<Row>) {
  const [sorting, setSorting] = useState<Sorting>({by: columns[0]!.id, descending: false});
  const shown = useMemo(() => {
    const {value} = columns.find(({id}) => id === sorting.by)!;
    const sign = sorting.descending ? -1 : 1;
    return rows
      .filter(row => text === "" || columns.some(column => String(column.value(row)).toLowerCase().includes(text)))
      .sort((a, b) => {
        const [left, right] = [value(a), value(b)];
        return sign * (left < right ? -1 : left > right ? 1 : 0);
      });
  }, [rows, text, sorting]);
  return (
    <>
      <p class="muted" role="status">
        {live.data ? `${count(shown.length)} of ${count(rows.length)}` : (live.error ?? "Loading…")}
      </p>
      <VirtualTable
        label={label}
        rows={shown}
        keyOf={keyOf}
        columns={columns.map(column => ({...column, canSort: true}))}
        sorting={sorting}
        onSort={setSorting}
        onOpen={row => {
          if (ontOf(row) !== "") go(`/onts/${ontOf(row)}`);
        }}
        narrow={narrow}
        empty={live.data ? "Nothing is found." : (live.error ?? "Loading…")}
      />
    </>
  );
}

/** So that 10.0.0.10 is sorted behind 10.0.0.9; is found by the address as it is written, too. */
export const addressOrder = (address: string) =>
  `${address
    .split(".")
    .map(octet => octet.padStart(3, "0"))
    .join(".")} ${address}`;

/** So that "3/17" is sorted behind "3/2". */
export const placeOrder = (port: number, ont: number) =>
  `${String(port).padStart(2, "0")}/${String(ont).padStart(3, "0")} ${port}/${ont}`;

/** Which ONT a row is about: its place and its serial number. */
export const ontColumns = <Row extends {pon_port_id: number; ont_id: number; ont_serial: Serial}>(
  format: SerialFormat,
): FoundColumn<Row>[] => [
  {
    id: "ont",
    title: "ONT",
    width: "72px",
    value: row => placeOrder(row.pon_port_id, row.ont_id),
    cell: row => `${row.pon_port_id}/${row.ont_id}`,
  },
  {
    id: "serial",
    title: "Serial",
    width: "minmax(120px, 1fr)",
    value: row => serialText(row.ont_serial, format),
    cell: row => <span class="mono">{serialText(row.ont_serial, format)}</span>,
  },
];
