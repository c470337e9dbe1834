import {useState} from "preact/hooks";

import {request} from "../../gateway/session.ts";
import {unitOf} from "../../model/labels.ts";
import {paths} from "../../model/paths.ts";
import {parseRange, rangeText} from "../../model/ranges.ts";
import {kindOf, type Schema} from "../../model/schema.ts";
import {parseSerial, serialText, type Serial} from "../../model/serial.ts";
import {choiceText} from "./values.ts";
import {ReferenceField} from "./reference_field.tsx";

export interface FieldProperties {
  /** Key path, as errors have it. */
  path: string;
  name: string;
  schema: Schema;
  value: unknown;
  isReadOnly: boolean;
  hasError: boolean;
  onChange: (value: unknown) => void;
}

/** The control of one value. */
export function Control(properties: FieldProperties) {
  const {path, schema, value, isReadOnly, hasError, onChange} = properties;
  const common = {
    id: `field-${path}`,
    disabled: isReadOnly,
    "aria-invalid": hasError,
    "aria-describedby": `about-${path}`,
  };
  switch (kindOf(schema)) {
    case "flag":
      return (
        <input
          {...common}
          type="checkbox"
          checked={value === true}
          onChange={event => onChange(event.currentTarget.checked)}
        />
      );
    case "choice":
      return (
        <select {...common} value={String(value)} onChange={event => onChange(event.currentTarget.value)}>
          {schema.enum!.map(choice => (
            <option key={choice} value={choice}>
              {choiceText(choice)}
            </option>
          ))}
        </select>
      );
    case "reference":
      return <ReferenceField {...properties} common={common} />;
    case "number":
      return <NumberField schema={schema} value={value} onChange={onChange} common={common} />;
    case "secret":
      return <SecretField value={String(value)} onChange={onChange} common={common} />;
    case "serial":
      return (
        <ParsedField<Serial>
          value={value as Serial}
          toText={serialText}
          parse={parseSerial}
          complaint="Four letters and eight hexadecimal digits, such as SIMUA0030011"
          onChange={onChange}
          common={common}
        />
      );
    case "ports":
      return (
        <ParsedField<number[]>
          value={value as number[]}
          toText={rangeText}
          parse={parseRange}
          complaint="Numbers and ranges, such as 1-4,7"
          onChange={onChange}
          common={common}
        />
      );
    default:
      return (
        <input
          {...common}
          type="text"
          value={String(value ?? "")}
          maxLength={schema.maxLength}
          spellcheck={false}
          class={(schema.maxLength ?? 99) > 40 || schema.pattern?.includes("409") ? "wide" : ""}
          onInput={event => onChange(event.currentTarget.value)}
        />
      );
  }
}

type Common = Record<string, unknown>;

/** What is no number goes to the API as it is, which says so in its words. */
function NumberField({
  schema,
  value,
  onChange,
  common,
}: {
  schema: Schema;
  value: unknown;
  onChange: (value: unknown) => void;
  common: Common;
}) {
  return (
    <input
      {...common}
      type="text"
      inputMode="numeric"
      class="narrow"
      value={String(value ?? "")}
      size={Math.max(6, String(schema.maximum ?? "").length + 1)}
      onInput={event => {
        const text = event.currentTarget.value.trim();
        onChange(/^-?\d+$/.test(text) ? Number(text) : text);
      }}
    />
  );
}

interface Parsed<T> {
  value: T;
  toText: (value: T) => string;
  parse: (text: string) => T | undefined;
  complaint: string;
  onChange: (value: unknown) => void;
  common: Common;
}

function ParsedField<T>({value, toText, parse, complaint, onChange, common}: Parsed<T>) {
  const [text, setText] = useState<string>();
  const isWrong = text !== undefined && parse(text) === undefined;
  return (
    <>
      <input
        {...common}
        type="text"
        spellcheck={false}
        aria-invalid={isWrong || common["aria-invalid"] === true}
        value={text ?? toText(value)}
        onInput={event => {
          setText(event.currentTarget.value);
          const read = parse(event.currentTarget.value);
          if (read !== undefined) onChange(read);
        }}
        onBlur={() => {
          if (!isWrong) setText(undefined);
        }}
      />
      {isWrong && <p class="failure small">{complaint}</p>}
    </>
  );
}

/** What is typed leaves the page in plain once, to be brought into the form in which the configuration takes it. */
function SecretField({value, onChange, common}: {value: string; onChange: (value: unknown) => void; common: Common}) {
  const [failure, setFailure] = useState("");
  const take = async (text: string) => {
    try {
      const hidden = await request<{text: string}>({path: paths.obfuscate, method: "call", data: {text}});
      onChange(hidden.text);
      setFailure("");
    } catch (error) {
      setFailure((error as Error).message);
    }
  };
  return (
    <>
      <input
        {...common}
        type="password"
        autocomplete="new-password"
        placeholder={value === "" ? "none" : "unchanged"}
        onChange={event => {
          if (event.currentTarget.value !== "") void take(event.currentTarget.value);
        }}
      />
      {value !== "" && !common["disabled"] && (
        <button type="button" class="plain" onClick={() => onChange("")}>
          Remove
        </button>
      )}
      {failure && <p class="failure small">{failure}</p>}
    </>
  );
}

/** Meaning, limits and default in one line. */
export function aboutText(key: string, schema: Schema): string {
  const unit = unitOf(key);
  const parts: string[] = [];
  // The unit stands behind the control.
  const meaning = (schema.description ?? "")
    .split("; ")
    .filter(
      part =>
        part !== "s" &&
        part !== unit &&
        !/^(kbit\/s|bytes|km|%|packets per second|degrees Celsius|lengths count bytes.*)$/.test(part),
    )
    .join("; ");
  if (meaning) parts.push(meaning);
  if (schema.minimum !== undefined && !schema["x-names"])
    parts.push(
      `${schema.minimum} to ${schema.maximum}${schema.multipleOf ? `, multiples of ${schema.multipleOf}` : ""}`,
    );
  if (schema.maxLength && kindOf(schema) === "text") parts.push(`at most ${schema.maxLength} bytes`);
  const {default: usual} = schema;
  if (usual !== undefined && usual !== "" && typeof usual !== "object") {
    const text =
      typeof usual === "boolean" ? (usual ? "on" : "off") : schema.enum ? choiceText(String(usual)) : String(usual);
    if (!schema["x-names"]) parts.push(`default ${text}`);
  }
  return parts.join(" · ");
}
