import type {ComponentChildren} from "preact";
import {useState} from "preact/hooks";

import {Dialog} from "./dialog.tsx";

interface Properties {
  title: string;
  /** What will happen. */
  children: ComponentChildren;
  verb: string;
  isDangerous?: boolean;
  /** What it throws is shown, and the question stays. */
  onYes: () => Promise<void>;
  onClose: () => void;
}

/** Asks before something is done, and says why it failed. */
export function Question({title, children, verb, isDangerous, onYes, onClose}: Properties) {
  const [failure, setFailure] = useState("");
  const [isBusy, setBusy] = useState(false);
  const answer = async () => {
    setBusy(true);
    setFailure("");
    try {
      await onYes();
      onClose();
    } catch (error) {
      setFailure((error as Error).message);
      setBusy(false);
    }
  };
  return (
    <Dialog
      title={title}
      onClose={onClose}
      actions={
        <>
          <button onClick={onClose}>Cancel</button>
          <button class={isDangerous ? "primary danger" : "primary"} disabled={isBusy} onClick={answer}>
            {isBusy ? "Working…" : verb}
          </button>
        </>
      }>
      {children}
      {failure && (
        <p class="failure" role="alert">
          {failure}
        </p>
      )}
    </Dialog>
  );
}
