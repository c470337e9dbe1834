import {useEffect, useMemo, useRef, useState} from "preact/hooks";

import {useOnts} from "../../gateway/onts.ts";
import {useMay} from "../../gateway/session.ts";
import {count, dbm} from "../../model/format.ts";
import {groups, type Group, type Ont} from "../../model/onts.ts";
import {filtered, sorted, type OntFilter, type SortKey} from "../../model/ont_filter.ts";
import type {Level} from "../../model/optics.ts";
import {useStore} from "../../model/store.ts";
import {countGroups} from "../../model/summary.ts";
import {changeQuery, go, place} from "../../ui/route.ts";
import {OntStatus, Status} from "../../ui/status.tsx";
import {VirtualTable, type Column} from "../../ui/virtual_table.tsx";
import {Histogram} from "./histogram.tsx";
import {OntActions} from "./ont_actions.tsx";

export const openOnt = (ont: Ont) =>
  go(ont.ont > 0 ? `/onts/${ont.port}/${ont.ont}` : `/unactivated?q=${ont.serialText}`);

function filterOf(query: URLSearchParams): OntFilter {
  const power = query.get("power")?.split("to").map(Number);
  return {
    text: query.get("q") ?? "",
    group: (query.get("state") ?? "") as Group | "",
    port: Number(query.get("port") ?? 0),
    optics: (query.get("optics") ?? "") as Level | "",
    power: power?.length === 2 ? [power[0]!, power[1]!] : undefined,
  };
}

/** All ONTs of the OLT. The filter stands in the address, so that it can be kept and passed on. */
export function Onts() {
  const {query} = useStore(place);
  const {rows, isKnown, error} = useOnts();
  const mayAct = useMay("operator");
  const [selected, setSelected] = useState<ReadonlySet<string>>(new Set());
  const search = useRef<HTMLInputElement>(null);
  const filter = filterOf(query);
  const by = (query.get("sort") ?? "ont") as SortKey;
  const descending = query.get("order") === "down";
  const text = query.toString();
  const shown = useMemo(() => sorted(filtered(rows, filter), by, descending), [rows, text]);
  const counts = useMemo(() => countGroups(filtered(rows, filter, "group")), [rows, text]);
  const forHistogram = useMemo(() => filtered(rows, filter, "power"), [rows, text]);
  const ports = useMemo(() => [...new Set(rows.map(({port}) => port))].sort((a, b) => a - b), [rows]);
  const chosen = useMemo(() => rows.filter(({key}) => selected.has(key)), [rows, selected]);

  useEffect(() => {
    const onKey = (event: KeyboardEvent) => {
      if (event.key !== "/" || event.target instanceof HTMLInputElement || document.querySelector("dialog[open]"))
        return;
      event.preventDefault();
      search.current?.focus();
    };
    addEventListener("keydown", onKey);
    return () => removeEventListener("keydown", onKey);
  }, []);

  const toggle = ({key, ont}: Ont) => {
    if (ont === 0 || !mayAct) return;
    const next = new Set(selected);
    if (!next.delete(key)) next.add(key);
    setSelected(next);
  };
  const selectable = shown.filter(({ont}) => ont > 0);
  const isAll = selectable.length > 0 && selectable.every(({key}) => selected.has(key));
  const box = (
    <input
      type="checkbox"
      aria-label="Select all shown"
      checked={isAll}
      onChange={() => setSelected(isAll ? new Set() : new Set(selectable.map(({key}) => key)))}
    />
  );
  const columns: Column<Ont>[] = [
    ...(mayAct
      ? [
          {
            id: "select",
            title: box,
            width: "20px",
            cell: (ont: Ont) =>
              ont.ont > 0 && (
                <input
                  type="checkbox"
                  tabIndex={-1}
                  aria-label={`Select ONT ${ont.key}`}
                  checked={selected.has(ont.key)}
                  onClick={event => event.stopPropagation()}
                  onChange={() => toggle(ont)}
                />
              ),
          },
        ]
      : []),
    {
      id: "ont",
      title: "ONT",
      width: "64px",
      canSort: true,
      cell: ont => <strong>{ont.ont > 0 ? ont.key : `${ont.port}/–`}</strong>,
    },
    {
      id: "state",
      title: "State",
      width: "136px",
      canSort: true,
      cell: ont => <OntStatus group={ont.group} state={ont.state} title={ont.meaning} />,
    },
    {
      id: "rssi",
      title: "Received",
      width: "118px",
      canSort: true,
      isNumber: true,
      cell: ont => <Received ont={ont} />,
    },
    {
      id: "distance",
      title: "Distance",
      width: "84px",
      canSort: true,
      isNumber: true,
      cell: ont => (ont.distance === undefined ? "–" : `${(ont.distance / 1000).toFixed(2)} km`),
    },
    {
      id: "serial",
      title: "Serial",
      width: "128px",
      canSort: true,
      cell: ont => <span class="mono">{ont.serialText}</span>,
    },
    {id: "model", title: "Model", width: "108px", canSort: true, cell: ont => ont.model || "–"},
    {id: "software", title: "Software", width: "84px", canSort: true, cell: ont => ont.software || "–"},
    {
      id: "description",
      title: "Description",
      width: "minmax(80px, 1fr)",
      canSort: true,
      cell: ont => ont.description,
    },
  ];
  return (
    <div class="page fills onts">
      <div class="page-head">
        <h1>ONTs</h1>
        <span class="muted" role="status">
          {isKnown ? `${count(shown.length)} of ${count(rows.length)}` : (error ?? "Loading…")}
        </span>
        <div class="actions filters">
          <input
            ref={search}
            class="search"
            type="search"
            placeholder="Filter: serial, description, model… ( / )"
            aria-label="Filter by text"
            value={filter.text}
            onInput={event => changeQuery({q: event.currentTarget.value})}
          />
          <select
            aria-label="PON port"
            value={String(filter.port)}
            onChange={event => changeQuery({port: event.currentTarget.value === "0" ? "" : event.currentTarget.value})}>
            <option value="0">All PON ports</option>
            {ports.map(port => (
              <option key={port} value={port}>
                PON port {port}
              </option>
            ))}
          </select>
          <select
            aria-label="Optics"
            value={filter.optics}
            onChange={event => changeQuery({optics: event.currentTarget.value})}>
            <option value="">Any optics</option>
            <option value="bad">Outside limits</option>
            <option value="warn">Little margin</option>
            <option value="good">Within limits</option>
          </select>
        </div>
      </div>
      <div class="ont-filters">
        <div class="actions" role="group" aria-label="Filter by state">
          <button class="chip" aria-pressed={filter.group === ""} onClick={() => changeQuery({state: ""})}>
            All
          </button>
          {groups
            .filter(({id}) => counts[id] > 0 || filter.group === id)
            .map(({id, title, level}) => (
              <button
                key={id}
                class="chip"
                aria-pressed={filter.group === id}
                onClick={() => changeQuery({state: filter.group === id ? "" : id})}>
                <Status level={level}>
                  {title} <span class="muted">{count(counts[id])}</span>
                </Status>
              </button>
            ))}
        </div>
        <Histogram onts={forHistogram} power={filter.power} />
      </div>
      {chosen.length > 0 && <OntActions onts={chosen} onDone={() => setSelected(new Set())} />}
      <VirtualTable
        label="ONTs"
        rows={shown}
        keyOf={ont => ont.key}
        columns={columns}
        sorting={{by, descending}}
        onSort={to => changeQuery({sort: to.by === "ont" ? "" : to.by, order: to.descending ? "down" : ""})}
        onOpen={openOnt}
        selected={selected}
        onToggle={toggle}
        empty={
          !isKnown
            ? (error ?? "Loading…")
            : rows.length === 0
              ? "No ONT is connected or configured."
              : "No ONT fits the filter."
        }
        narrow={ont => (
          <>
            <span class="line">
              <strong>
                {ont.ont > 0 ? ont.key : `${ont.port}/–`} <span class="muted">{ont.description || ont.serialText}</span>
              </strong>
              <Received ont={ont} />
            </span>
            <span class="line">
              <OntStatus group={ont.group} state={ont.state} />
              <span class="muted mono">{ont.serialText}</span>
            </span>
          </>
        )}
      />
    </div>
  );
}

function Received({ont}: {ont: Ont}) {
  if (ont.rssi === undefined) return <span class="muted">–</span>;
  const level = ont.reception!.level;
  return (
    <span class={level === "good" ? "" : `text-${level}`} title={ont.reception!.text}>
      {level !== "good" && "▾ "}
      {dbm(ont.rssi)} dBm
    </span>
  );
}
