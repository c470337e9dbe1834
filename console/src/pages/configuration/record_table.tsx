import {useMemo, useState} from "preact/hooks";

import {useConstants} from "../../gateway/device.ts";
import {useRecords, type RecordData} from "../../gateway/records.ts";
import {useMay} from "../../gateway/session.ts";
import {linkTo, type Element} from "../../model/elements.ts";
import {labelOf} from "../../model/labels.ts";
import {schemaOf} from "../../model/schema.ts";
import {useStore} from "../../model/store.ts";
import {changeQuery, go, place} from "../../ui/route.ts";
import {VirtualTable, type Column} from "../../ui/virtual_table.tsx";
import {useNames} from "./reference_field.tsx";
import {valueText} from "./values.ts";

interface Row {
  indices: readonly number[];
  record: RecordData;
  isDefined: boolean;
}

/** The records of an element; those of ONTs a PON port at a time. */
export function RecordTable({element}: {element: Element}) {
  const {fields, setBy} = schemaOf(element.path)!;
  const mayAdd = useMay(setBy ?? "administrator") && element.definedBy !== undefined;
  const device = useConstants().data;
  const sizes = device ? element.sizes(device) : undefined;
  const port = Number(useStore(place).query.get("port") ?? 1);
  const [text, setText] = useState("");
  const first = sizes && sizes.length > 1 ? [port] : [];
  const {data, error} = useRecords<RecordData[]>(
    sizes ? element.path : undefined,
    [...first, `1-${sizes?.at(-1)}`],
    "candidate",
  );
  const templates = useNames(
    "ont_template" in fields ? fields["ont_template"]!["x-names"]?.replace("configuration.", "") : undefined,
  );
  const all = useMemo(
    () =>
      (data ?? []).map<Row>((record, index) => ({
        indices: [...first, index + 1],
        record,
        isDefined:
          !element.definedBy ||
          JSON.stringify(record[element.definedBy]) !== JSON.stringify(fields[element.definedBy]?.default),
      })),
    [data, port],
  );
  const rows = all.filter(
    ({record, isDefined}) =>
      isDefined &&
      (text === "" ||
        JSON.stringify(Object.values(record)).toLowerCase().includes(text.toLowerCase()) ||
        valueText(record["serial"], fields["serial"]).toLowerCase().includes(text.toLowerCase())),
  );
  const free = all.find(({isDefined}) => !isDefined);
  const columns: Column<Row>[] = [
    {id: "index", title: "#", width: "56px", cell: ({indices}) => <strong>{indices.join("/")}</strong>},
    ...(element.columns ?? []).map(key => ({
      id: key,
      title: labelOf(key),
      width: key === "description" || key === "name" ? "minmax(110px, 1.6fr)" : "minmax(76px, 1fr)",
      cell: ({record}: Row) =>
        key === "ont_template"
          ? templateText(Number(record[key]))
          : record[key] === ""
            ? ""
            : valueText(record[key], fields[key]),
    })),
  ];
  const templateText = (number: number) =>
    number === 0 ? "none" : `${number} ${templates.find(one => one.number === number)?.name ?? ""}`;
  return (
    <section class="record-table">
      <div class="page-head">
        <h2>{element.title}</h2>
        <div class="actions">
          <input
            type="search"
            placeholder="Filter"
            aria-label="Filter"
            value={text}
            onInput={event => setText(event.currentTarget.value)}
          />
          {sizes && sizes.length > 1 && (
            <select
              aria-label="PON port"
              value={port}
              onChange={event => changeQuery({port: event.currentTarget.value})}>
              {Array.from({length: sizes[0]!}, (_, index) => (
                <option key={index} value={index + 1}>
                  PON port {index + 1}
                </option>
              ))}
            </select>
          )}
          {mayAdd && (
            <button class="primary" disabled={!free} onClick={() => free && go(linkTo(element, free.indices).slice(1))}>
              Add
            </button>
          )}
        </div>
      </div>
      <VirtualTable
        label={element.title}
        rows={rows}
        keyOf={({indices}) => indices.join("/")}
        columns={columns}
        onOpen={({indices}) => go(linkTo(element, indices).slice(1))}
        empty={error ?? (data ? "None is defined." : "Loading…")}
      />
    </section>
  );
}
