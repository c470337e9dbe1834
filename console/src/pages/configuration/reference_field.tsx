import {useConstants} from "../../gateway/device.ts";
import {useRecords} from "../../gateway/records.ts";
import {elementOf, linkTo} from "../../model/elements.ts";
import type {FieldProperties} from "./field.tsx";

/** The records of an element that have a name, by number. */
export function useNames(path: string | undefined): readonly {number: number; name: string; description?: string}[] {
  const device = useConstants().data;
  const size = path && device ? elementOf(path)?.sizes(device)[0] : undefined;
  const {data} = useRecords<{name: string; description?: string}[]>(
    size ? path : undefined,
    [`1-${size}`],
    "candidate",
  );
  return (data ?? []).flatMap(({name, description}, index) =>
    name === "" ? [] : [{number: index + 1, name, description}],
  );
}

/** A choice among the profiles that are defined. */
export function ReferenceField({schema, value, onChange, common}: FieldProperties & {common: Record<string, unknown>}) {
  const path = schema["x-names"]!.replace("configuration.", "");
  const names = useNames(path);
  const number = Number(value);
  const isKnown = number === 0 || names.some(name => name.number === number);
  const element = elementOf(path);
  return (
    <>
      <select {...common} value={String(number)} onChange={event => onChange(Number(event.currentTarget.value))}>
        <option value="0">None</option>
        {!isKnown && <option value={number}>{number} (not defined)</option>}
        {names.map(({number: own, name}) => (
          <option key={own} value={own}>
            {own} {name}
          </option>
        ))}
      </select>
      {number > 0 && element && (
        <a class="small" href={linkTo(element, [number])}>
          Show
        </a>
      )}
    </>
  );
}
