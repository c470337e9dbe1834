import {labelOf, unitOf} from "../../model/labels.ts";
import {defaultOf, hasFixedLength, kindOf, type Fields, type Schema} from "../../model/schema.ts";
import {aboutText, Control} from "./field.tsx";
import {valueText} from "./values.ts";

export interface FormContext {
  isReadOnly: boolean;
  /** Text by key path. */
  errors: ReadonlyMap<string, string>;
  /** What runs, for the fields that differ. */
  running?: unknown;
}

interface Properties extends FormContext {
  fields: Fields;
  value: Record<string, unknown>;
  onChange: (value: Record<string, unknown>) => void;
  /** Of the record itself; "" at the top. */
  path?: string;
}

/** A record as a form: a row for each field, lists below their titles. */
export function RecordForm({fields, value, onChange, path = "", running, ...context}: Properties) {
  const below = (key: string) => (path === "" ? key : `${path}.${key}`);
  const runs = running as Record<string, unknown> | undefined;
  return (
    <div class="record">
      {Object.entries(fields).map(([key, schema]) => {
        const row = {
          name: key,
          path: below(key),
          schema,
          value: value[key],
          running: runs?.[key],
          ...context,
          onChange: (part: unknown) => onChange({...value, [key]: part}),
        };
        const kind = kindOf(schema);
        return kind === "records" ? (
          <RecordList key={key} {...row} />
        ) : kind === "values" ? (
          <ValueList key={key} {...row} />
        ) : (
          <Row key={key} {...row} />
        );
      })}
    </div>
  );
}

interface RowProperties extends FormContext {
  name: string;
  path: string;
  schema: Schema;
  value: unknown;
  onChange: (value: unknown) => void;
}

function Row({name, path, schema, value, running, errors, isReadOnly, onChange}: RowProperties) {
  const error = errors.get(path);
  const differs = running !== undefined && JSON.stringify(running) !== JSON.stringify(value);
  return (
    <div class={`field${error ? " wrong" : ""}${differs ? " changed" : ""}`}>
      <label for={`field-${path}`}>{labelOf(name)}</label>
      <div class="control">
        <Control {...{path, name, schema, value, isReadOnly, onChange}} hasError={error !== undefined} />
        {unitOf(name) && <span class="muted">{unitOf(name)}</span>}
        {differs && (
          <span class="runs">
            running: {valueText(running, schema)}
            {!isReadOnly && (
              <button
                type="button"
                class="plain"
                aria-label={`Undo the change of ${labelOf(name)}`}
                onClick={() => onChange(structuredClone(running))}>
                Undo
              </button>
            )}
          </span>
        )}
      </div>
      {error && (
        <p class="failure" role="alert">
          {error}
        </p>
      )}
      <p class="about" id={`about-${path}`}>
        {aboutText(name, schema)}
      </p>
    </div>
  );
}

/** A list of plain values with a control for each, such as two addresses. */
function ValueList({name, path, schema, value, errors, isReadOnly, onChange}: RowProperties) {
  const items = value as unknown[];
  return (
    <fieldset class="field">
      <legend>{labelOf(name)}</legend>
      <div class="control">
        {items.map((item, index) => (
          <span key={index} class="numbered">
            <span class="muted">{index + 1}</span>
            <Control
              path={`${path}.${index}`}
              name={name}
              schema={schema.items as Schema}
              value={item}
              isReadOnly={isReadOnly}
              hasError={errors.has(`${path}.${index}`)}
              onChange={part => onChange(items.map((old, at) => (at === index ? part : old)))}
            />
          </span>
        ))}
      </div>
      {items
        .map((_, index) => errors.get(`${path}.${index}`))
        .filter(Boolean)
        .map(text => (
          <p class="failure" role="alert">
            {text}
          </p>
        ))}
      <p class="about">{schema.description}</p>
    </fieldset>
  );
}

/** Records within the record: a table, whose rows can be added and removed where their number is free. */
function RecordList({name, path, schema, value, running, errors, isReadOnly, onChange}: RowProperties) {
  const items = value as Record<string, unknown>[];
  const fields = (schema.items as Schema).properties!;
  const isFixed = hasFixedLength(schema);
  const error = errors.get(path);
  return (
    <fieldset class={`list${error ? " wrong" : ""}`} id={`field-${path}`} tabIndex={-1}>
      <legend>
        {labelOf(name)}{" "}
        {!isFixed && (
          <small class="muted">
            {items.length} of at most {schema.maxItems}
          </small>
        )}
      </legend>
      {schema.description && <p class="about">{schema.description}</p>}
      {error && (
        <p class="failure" role="alert">
          {error}
        </p>
      )}
      {items.length > 0 && (
        <div class="scrolls">
          <table class="plain">
            <thead>
              <tr>
                <th />
                {Object.entries(fields).map(([key, field]) => (
                  <th key={key} title={aboutText(key, field)}>
                    {labelOf(key)}
                    {unitOf(key) && `, ${unitOf(key)}`}
                  </th>
                ))}
                <th />
              </tr>
            </thead>
            <tbody>
              {items.map((item, index) => (
                <tr key={index}>
                  <td class="muted">{index + (name === "queues" ? 0 : 1)}</td>
                  {Object.entries(fields).map(([key, field]) => {
                    const place = `${path}.${index}.${key}`;
                    const before = (running as Record<string, unknown>[] | undefined)?.[index]?.[key];
                    const differs = running !== undefined && JSON.stringify(before) !== JSON.stringify(item[key]);
                    return (
                      <td
                        key={key}
                        class={differs ? "changed" : ""}
                        title={differs ? `running: ${valueText(before, field)}` : undefined}>
                        <Control
                          path={place}
                          name={key}
                          schema={field}
                          value={item[key]}
                          isReadOnly={isReadOnly}
                          hasError={errors.has(place)}
                          onChange={part =>
                            onChange(items.map((old, at) => (at === index ? {...old, [key]: part} : old)))
                          }
                        />
                        {errors.has(place) && (
                          <p class="failure small" role="alert">
                            {errors.get(place)}
                          </p>
                        )}
                      </td>
                    );
                  })}
                  <td>
                    {!isFixed && !isReadOnly && (
                      <button
                        type="button"
                        class="plain"
                        aria-label={`Remove row ${index + 1}`}
                        onClick={() => onChange(items.filter((_, at) => at !== index))}>
                        Remove
                      </button>
                    )}
                  </td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
      {!isFixed && !isReadOnly && items.length < (schema.maxItems ?? 0) && (
        <button
          type="button"
          onClick={() => onChange([...items, defaultOf(schema.items as Schema) as Record<string, unknown>])}>
          Add
        </button>
      )}
    </fieldset>
  );
}
