import type {OntTemplate} from "olt_api";
import {useEffect, useState} from "preact/hooks";

import {noteEdit} from "../../gateway/edits.ts";
import {findPending, pending} from "../../gateway/pending.ts";
import {readRecords, setRecord, useRecords} from "../../gateway/records.ts";
import {errorText, Refused, type ApiError} from "../../model/answers.ts";
import {linkTo, nameOf, recordOf} from "../../model/elements.ts";
import {counted} from "../../model/format.ts";
import type {Ont} from "../../model/onts.ts";
import {elements} from "../../model/paths.ts";
import {isSet, type Serial} from "../../model/serial.ts";
import {useStore} from "../../model/store.ts";
import {Dialog} from "../../ui/dialog.tsx";
import {commit} from "../configuration/commands.ts";
import {useNames} from "../configuration/reference_field.tsx";
import {noteAdopted} from "./adopted.tsx";

/** Configures an ONT where it is seen: on the first free number of its port, with a template, and commits. */
export function Adopt({ont, onClose}: {ont: Ont; onClose: () => void}) {
  const {data: records} = useRecords<OntTemplate[]>(elements.template, ["1-32"], "candidate");
  const crossConnects = useNames(elements.crossConnect);
  const templates = (records ?? [])
    .map((record, index) => ({...record, number: index + 1}))
    .filter(({name}) => name !== "");
  const servicesOf = (one: OntTemplate) =>
    one.services
      .flatMap(({cross_connect}) => crossConnects.find(({number}) => number === cross_connect)?.name ?? [])
      .join(", ");
  const changes = useStore(pending);
  const [number, setNumber] = useState<number>();
  const [template, setTemplate] = useState<number>();
  const [description, setDescription] = useState("");
  const [errors, setErrors] = useState<readonly ApiError[]>([]);
  const [failure, setFailure] = useState("");
  const [isBusy, setBusy] = useState(false);

  useEffect(() => {
    void findPending(false).catch(() => undefined);
    readRecords<{serial: Serial}[]>(elements.ont, [ont.port, "1-256"], "candidate").then(
      records => {
        const free = records.findIndex(({serial}) => !isSet(serial));
        if (free < 0) setFailure(`PON port ${ont.port} has no free number.`);
        else setNumber(free + 1);
      },
      (error: Error) => setFailure(error.message),
    );
  }, []);
  const adopt = async () => {
    setBusy(true);
    setErrors([]);
    setFailure("");
    try {
      await setRecord(elements.ont, [ont.port, number!], {
        serial: ont.serial,
        description,
        ont_template: template,
      });
      noteEdit();
      await commit();
      noteAdopted(`${ont.port}/${number}`);
      onClose();
    } catch (error) {
      if (error instanceof Refused) setErrors(error.errors);
      else setFailure((error as Error).message);
      setBusy(false);
    }
  };
  const others = changes?.length ?? 0;
  return (
    <Dialog
      title={`Adopt ${ont.serialText}`}
      onClose={onClose}
      actions={
        <>
          <button onClick={onClose}>Cancel</button>
          <button
            class="primary"
            disabled={isBusy || template === undefined || number === undefined}
            onClick={() => void adopt()}>
            {isBusy ? "Committing…" : "Adopt and commit"}
          </button>
        </>
      }>
      <p>
        It becomes ONT{" "}
        <strong>
          {ont.port}/{number ?? "…"}
        </strong>{" "}
        on the PON port where it is seen.
      </p>
      <fieldset class="choices">
        <legend>Template</legend>
        {templates.map(one => (
          <label key={one.number}>
            <input
              type="radio"
              name="template"
              checked={template === one.number}
              onChange={() => setTemplate(one.number)}
            />
            <span>
              <strong>{one.name}</strong>
              <small class="muted">{[one.description, servicesOf(one)].filter(text => text !== "").join(": ")}</small>
            </span>
          </label>
        ))}
        {templates.length === 0 && (
          <p class="muted">
            No template is defined; an administrator can <a href={`#/configuration/${elements.template}`}>add one</a>.
          </p>
        )}
      </fieldset>
      <label class="stacked">
        Description{" "}
        <input
          value={description}
          maxLength={63}
          placeholder="Such as the house or the subscriber"
          onInput={event => setDescription(event.currentTarget.value)}
        />
      </label>
      {others > 0 && (
        <p class="text-warn">
          {counted(others, "other pending record")} will be committed, too.{" "}
          <a href="#/configuration">Look at them first</a>
        </p>
      )}
      {failure && (
        <p class="failure" role="alert">
          {failure}
        </p>
      )}
      {errors.map(error => {
        const record = recordOf(error.path);
        const text = errorText(error);
        return (
          <p key={error.path} class="failure" role="alert">
            {text}{" "}
            {record && (
              <a href={`${linkTo(record.element, record.indices)}?fault=${encodeURIComponent(text)}`}>
                Go to {nameOf(record.element, record.indices)}
              </a>
            )}
          </p>
        );
      })}
    </Dialog>
  );
}
