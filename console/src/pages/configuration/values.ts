import {rangeText} from "../../model/ranges.ts";
import {kindOf, type Schema} from "../../model/schema.ts";
import {isSet, serialText} from "../../model/serial.ts";
import {sentence} from "../../ui/status.tsx";

/** A value in a few characters, for lists and comparisons. */
export function valueText(value: unknown, schema?: Schema): string {
  if (value === undefined) return "–";
  if (typeof value === "boolean") return value ? "yes" : "no";
  if (value === "") return "empty";
  if (schema && kindOf(schema) === "secret") return "••••••";
  if (schema && kindOf(schema) === "choice") return choiceText(String(value));
  if (Array.isArray(value)) {
    if (schema && kindOf(schema) === "serial") return isSet(value) ? serialText(value) : "none";
    if (value.every(item => typeof item === "number"))
      return value.length === 0 ? "none" : schema?.uniqueItems ? rangeText(value) : value.join(", ");
    if (value.every(item => typeof item === "boolean")) return value.map(item => (item ? "yes" : "no")).join(", ");
    return `${value.length} entries`;
  }
  if (typeof value === "object" && value !== null) {
    return Object.entries(value)
      .map(([key, part]) => `${key} ${valueText(part)}`)
      .join(", ");
  }
  return String(value);
}

/** "One to one" of "one_to_one"; what looks like a number or a name stays. */
export function choiceText(choice: string): string {
  return /^[a-z]+(_[a-z0-9]+)*$/.test(choice) ? sentence(choice) : choice;
}

/** The schema of the field that a path like "servers.1.address" leads to. */
export function schemaAt(fields: Record<string, Schema>, path: string): Schema | undefined {
  let schema: Schema | undefined = {properties: fields};
  for (const part of path.split(".")) {
    schema = /^\d+$/.test(part) ? schema?.items || undefined : schema?.properties?.[part];
  }
  return schema;
}
