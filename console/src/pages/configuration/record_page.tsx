import {useEffect, useState} from "preact/hooks";

import {editedServices, noteEdit} from "../../gateway/edits.ts";
import {clearRecord, readRecord, setRecord, type RecordData} from "../../gateway/records.ts";
import {useMay} from "../../gateway/session.ts";
import {errorText, Refused} from "../../model/answers.ts";
import {fieldAtFault} from "../../model/commit_faults.ts";
import {linkTo, nameOf, type Element} from "../../model/elements.ts";
import {schemaOf} from "../../model/schema.ts";
import {elements} from "../../model/paths.ts";
import {useStore} from "../../model/store.ts";
import {edits} from "../../gateway/edits.ts";
import {notify} from "../../ui/notice.tsx";
import {go, place} from "../../ui/route.ts";
import {RecordForm} from "./record_form.tsx";

/** One record as a form; what is put down goes into the candidate, not yet into force. */
export function RecordPage({element, indices}: {element: Element; indices: readonly number[]}) {
  const schema = schemaOf(element.path)!;
  const isReadOnly = !useMay(schema.setBy ?? "administrator") || !schema.setBy;
  const fault = useStore(place).query.get("fault") ?? "";
  const turn = useStore(edits);
  const [candidate, setCandidate] = useState<RecordData>();
  const [running, setRunning] = useState<RecordData>();
  const [value, setValue] = useState<RecordData>();
  const [errors, setErrors] = useState<ReadonlyMap<string, string>>(new Map());
  const [failure, setFailure] = useState("");

  useEffect(() => {
    let isCurrent = true;
    Promise.all([readRecord(element.path, indices, "candidate"), readRecord(element.path, indices, "running")]).then(
      ([own, runs]) => {
        if (!isCurrent) return;
        setCandidate(own);
        setValue(own);
        setRunning(runs);
        const at = fault && fieldAtFault(fault, Object.keys(schema.fields));
        if (at) setErrors(new Map([[at, fault]]));
        else if (fault) setFailure(fault);
      },
      (error: Error) => {
        if (isCurrent) setFailure(error.message);
      },
    );
    return () => {
      isCurrent = false;
    };
  }, [turn, fault]);
  useEffect(() => {
    // A list as a whole has no control that could be wrong.
    const first =
      document.querySelector<HTMLElement>(".record [aria-invalid='true']") ??
      document.querySelector<HTMLElement>(".record .list.wrong");
    first?.scrollIntoView({block: "center"});
    first?.focus();
  }, [errors]);

  const attempt = async (action: () => Promise<void>, done: string) => {
    setFailure("");
    setErrors(new Map());
    try {
      await action();
      if (element.path === elements.service) editedServices.add(indices.join("/"));
      noteEdit();
      notify(done);
    } catch (error) {
      if (!(error instanceof Refused)) return setFailure((error as Error).message);
      const byField = new Map(error.errors.map(one => [one.path, errorText(one)]));
      const known = [...byField].filter(([path]) => path.split(".")[0]! in schema.fields);
      setErrors(new Map(known));
      setFailure(
        [...byField]
          .filter(([path]) => !(path.split(".")[0]! in schema.fields))
          .map(([, text]) => text)
          .join("; "),
      );
    }
  };
  const isDirty = JSON.stringify(value) !== JSON.stringify(candidate);
  const isDefined =
    !element.definedBy ||
    JSON.stringify(candidate?.[element.definedBy]) !== JSON.stringify(schema.fields[element.definedBy]?.default);
  return (
    <section class="card">
      <header>
        <h2>{nameOf(element, indices)}</h2>
        {element.path === elements.ont && isDefined && <a href={`#/onts/${indices.join("/")}`}>State of this ONT</a>}
      </header>
      <form
        class="body"
        onSubmit={event => {
          event.preventDefault();
          void attempt(
            () => setRecord(element.path, indices, value!),
            "Put into the candidate. Commit brings it into force.",
          );
        }}>
        <p class="about">
          {schema.description}
          {isReadOnly && (schema.setBy ? " You may look, but not change." : "")}
        </p>
        {failure && (
          <p class="failure" role="alert">
            {failure}
          </p>
        )}
        {value && (
          <RecordForm
            fields={schema.fields}
            value={value}
            onChange={setValue}
            running={running}
            errors={errors}
            isReadOnly={isReadOnly}
          />
        )}
        {!isReadOnly && value && (
          <div class="actions form-actions">
            <button class="primary" disabled={!isDirty}>
              Put into candidate
            </button>
            <button
              type="button"
              disabled={!isDirty}
              onClick={() => {
                setValue(candidate);
                setErrors(new Map());
              }}>
              Discard
            </button>
            {indices.length > 0 && isDefined && (
              <button
                type="button"
                class="danger"
                onClick={() =>
                  void attempt(
                    async () => {
                      await clearRecord(element.path, indices, element.path === elements.ont);
                      if (element.definedBy) go(linkTo(element, []).slice(1));
                    },
                    element.definedBy ? "Removed from the candidate." : "Back to the default in the candidate.",
                  )
                }>
                {element.definedBy ? "Remove" : "Back to default"}
              </button>
            )}
          </div>
        )}
      </form>
    </section>
  );
}
