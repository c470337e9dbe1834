import {useEffect, useState} from "preact/hooks";

import {edits, noteEdit} from "../../gateway/edits.ts";
import {findPending, pending} from "../../gateway/pending.ts";
import {setRecord} from "../../gateway/records.ts";
import {useMay} from "../../gateway/session.ts";
import {errorText, Refused, type ApiError} from "../../model/answers.ts";
import type {Change} from "../../model/difference.ts";
import {linkTo, nameOf, recordOf} from "../../model/elements.ts";
import {counted} from "../../model/format.ts";
import {labelOf} from "../../model/labels.ts";
import {schemaOf} from "../../model/schema.ts";
import {useStore} from "../../model/store.ts";
import {notify, tell} from "../../ui/notice.tsx";
import {Question} from "../../ui/question.tsx";
import {commit, rollback, save} from "./commands.ts";
import {schemaAt, valueText} from "./values.ts";

/** Everything that differs between candidate and running, whoever edited it, and what can be done with it. */
export function Pending() {
  const changes = useStore(pending);
  const turn = useStore(edits);
  const [refusals, setRefusals] = useState<readonly ApiError[]>([]);
  const [failure, setFailure] = useState("");
  const [isAsking, setAsking] = useState(false);
  const [isBusy, setBusy] = useState(false);
  const mayCommit = useMay("operator");
  const maySave = useMay("administrator");

  useEffect(() => {
    setBusy(true);
    findPending(true)
      .then(
        () => setFailure(""),
        (error: Error) => setFailure(error.message),
      )
      .finally(() => setBusy(false));
  }, [turn]);
  const doCommit = async () => {
    setBusy(true);
    setRefusals([]);
    setFailure("");
    try {
      await commit();
      notify("Committed. Save keeps it for the next start.");
    } catch (error) {
      if (error instanceof Refused) setRefusals(error.errors);
      else setFailure((error as Error).message);
    } finally {
      setBusy(false);
    }
  };
  const number = changes?.length ?? 0;
  return (
    <section class="card pending">
      <header>
        <h2>Pending changes {changes && <small>{number === 0 ? "none" : counted(number, "record")}</small>}</h2>
        <div class="actions">
          {mayCommit && (
            <button class="primary" disabled={isBusy || number === 0} onClick={() => void doCommit()}>
              Commit
            </button>
          )}
          {maySave && (
            <button disabled={isBusy || number === 0} onClick={() => setAsking(true)}>
              Roll back
            </button>
          )}
          {maySave && (
            <button
              disabled={isBusy}
              onClick={() => void tell("The running configuration is saved for the next start.", save)}>
              Save running
            </button>
          )}
        </div>
      </header>
      <div class="body">
        {failure && (
          <p class="failure" role="alert">
            {failure}
          </p>
        )}
        {refusals.map(error => (
          <Refusal key={error.path} error={error} />
        ))}
        {number === 0 && <p class="empty">{changes ? "Candidate and running are the same." : "Comparing…"}</p>}
        {changes?.slice(0, 200).map(change => (
          <OneChange key={`${change.element.path}/${change.indices.join("/")}`} change={change} />
        ))}
        {number > 200 && <p class="muted">… and {number - 200} more records.</p>}
      </div>
      {isAsking && (
        <Question
          title="Roll back?"
          verb="Roll back"
          isDangerous
          onClose={() => setAsking(false)}
          onYes={async () => {
            await rollback();
            setRefusals([]);
            notify("The changes are dropped.");
          }}>
          <p>
            All {counted(number, "pending record")}, also those that others have edited, become again what runs now.
          </p>
        </Question>
      )}
    </section>
  );
}

/** Why a commit was refused, with the way to the field that is at fault. */
function Refusal({error}: {error: ApiError}) {
  const record = recordOf(error.path);
  const text = errorText(error);
  return (
    <div class="refusal" role="alert">
      <p class="failure">{text}</p>
      {record && (
        <a class="button" href={`${linkTo(record.element, record.indices)}?fault=${encodeURIComponent(text)}`}>
          Go to {nameOf(record.element, record.indices)}
        </a>
      )}
    </div>
  );
}

function OneChange({change: {element, indices, fields, running}}: {change: Change}) {
  const schema = schemaOf(element.path)!;
  const mayEdit = useMay(schema.setBy ?? "administrator");
  const revert = () =>
    tell("Taken back.", async () => {
      await setRecord(element.path, indices, running);
      noteEdit();
    });
  return (
    <article class="change">
      <div class="change-head">
        <a href={linkTo(element, indices)}>
          <strong>{nameOf(element, indices)}</strong>
        </a>
        {mayEdit && (
          <button class="plain" onClick={() => void revert()}>
            Take back
          </button>
        )}
      </div>
      <div class="scrolls">
        <table class="plain">
          <thead>
            <tr>
              <th>Field</th>
              <th>Running</th>
              <th>Candidate</th>
            </tr>
          </thead>
          <tbody>
            {fields.map(({path, running: before, candidate: after}) => (
              <tr key={path}>
                <td>
                  {path
                    .split(".")
                    .map(part => (/^\d+$/.test(part) ? String(Number(part) + 1) : labelOf(part)))
                    .join(" › ")}
                </td>
                <td class="muted">{valueText(before, schemaAt(schema.fields, path))}</td>
                <td>
                  <strong>{valueText(after, schemaAt(schema.fields, path))}</strong>
                </td>
              </tr>
            ))}
          </tbody>
        </table>
      </div>
    </article>
  );
}
