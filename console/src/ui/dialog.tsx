import type {ComponentChildren} from "preact";
import {useEffect, useRef} from "preact/hooks";

interface Properties {
  title: string;
  onClose: () => void;
  children: ComponentChildren;
  /** The buttons, the one that does it last. */
  actions?: ComponentChildren;
  wide?: boolean;
}

/** A question in front of everything else. Escape closes it; the browser keeps the focus inside. */
export function Dialog({title, onClose, children, actions, wide}: Properties) {
  const element = useRef<HTMLDialogElement>(null);
  useEffect(() => {
    const dialog = element.current!;
    const before = document.activeElement;
    dialog.showModal();
    return () => {
      dialog.close();
      if (before instanceof HTMLElement) before.focus();
    };
  }, []);
  return (
    <dialog
      ref={element}
      class={wide ? "dialog wide" : "dialog"}
      aria-label={title}
      onCancel={event => {
        event.preventDefault();
        onClose();
      }}>
      <h2>{title}</h2>
      <div class="dialog-body">{children}</div>
      {actions && <div class="actions">{actions}</div>}
    </dialog>
  );
}
