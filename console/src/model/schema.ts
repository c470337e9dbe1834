import documents from "olt-schemas";

/** What the page reads of a JSON Schema. */
export interface Schema {
  type?: "boolean" | "integer" | "string" | "array" | "object";
  $ref?: string;
  enum?: string[];
  default?: unknown;
  description?: string;
  minimum?: number;
  maximum?: number;
  multipleOf?: number;
  minLength?: number;
  maxLength?: number;
  pattern?: string;
  format?: string;
  items?: Schema | false;
  prefixItems?: Schema[];
  minItems?: number;
  maxItems?: number;
  uniqueItems?: boolean;
  properties?: Record<string, Schema>;
  $defs?: Record<string, Schema>;
  /** The element whose records this number names; 0 for none. */
  "x-names"?: string;
}

export type Fields = Record<string, Schema>;

export type Kind =
  "flag" | "choice" | "number" | "reference" | "text" | "secret" | "serial" | "ports" | "records" | "values";

export interface ElementSchema {
  /** Of the record, its references resolved. */
  fields: Fields;
  description: string;
  /** Who may change it; undefined for nobody. */
  setBy?: "operator" | "administrator";
}

/** References replaced by what they name; records hold no records of their own kind. */
function resolve(schema: Schema, definitions: Record<string, Schema>): Schema {
  const named = schema.$ref ? definitions[schema.$ref.replace("#/$defs/", "")]! : undefined;
  const whole = {...named, ...schema};
  return {
    ...whole,
    ...(whole.items && {items: resolve(whole.items, definitions)}),
    ...(whole.properties && {properties: resolveAll(whole.properties, definitions)}),
  };
}

function resolveAll(fields: Fields, definitions: Record<string, Schema>): Fields {
  return Object.fromEntries(Object.entries(fields).map(([key, schema]) => [key, resolve(schema, definitions)]));
}

const known = new Map<string, ElementSchema>();

/** Of an element without "configuration."; undefined for one that there is not. */
export function schemaOf(element: string): ElementSchema | undefined {
  const found = known.get(element);
  const document = documents[element];
  if (found || !document) return found;
  const whole = resolve(document.record, document.record.$defs ?? {});
  const made = {fields: whole.properties ?? {}, description: whole.description ?? "", setBy: document.setBy};
  known.set(element, made);
  return made;
}

export function kindOf(schema: Schema): Kind {
  if (schema.type === "boolean") return "flag";
  if (schema.enum) return "choice";
  if (schema.type === "integer") return schema["x-names"] ? "reference" : "number";
  if (schema.type === "string") return schema.pattern?.includes("\\$ob1\\$") ? "secret" : "text";
  if (schema.prefixItems) return "serial";
  if (schema.items && schema.items.properties) return "records";
  return schema.uniqueItems ? "ports" : "values";
}

/** What a record has when nothing is said. */
export function defaultOf(schema: Schema): unknown {
  if (schema.default !== undefined) return structuredClone(schema.default);
  if (schema.properties)
    return Object.fromEntries(Object.entries(schema.properties).map(([key, field]) => [key, defaultOf(field)]));
  if (schema.type === "array")
    return Array.from({length: schema.minItems ?? 0}, () => defaultOf(schema.items as Schema));
  return "";
}

export function hasFixedLength(schema: Schema): boolean {
  return schema.minItems !== undefined && schema.minItems === schema.maxItems;
}
