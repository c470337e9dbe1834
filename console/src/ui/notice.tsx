import {useEffect} from "preact/hooks";

import {Store, useStore} from "../model/store.ts";

const shown = new Store<{text: string; isBad: boolean} | undefined>(undefined);

/** Says in passing what was done, or what went wrong. */
export function notify(text: string, isBad = false): void {
  shown.set({text, isBad});
}

/** Does it and says so; what it throws is said, too. */
export async function tell(done: string, action: () => Promise<unknown>): Promise<void> {
  try {
    await action();
    notify(done);
  } catch (error) {
    notify((error as Error).message, true);
  }
}

export function Notice() {
  const notice = useStore(shown);
  useEffect(() => {
    if (!notice) return;
    const timer = setTimeout(() => shown.set(undefined), notice.isBad ? 10_000 : 4_000);
    return () => clearTimeout(timer);
  }, [notice]);
  return (
    <div role="status" aria-live="polite">
      {notice && (
        <p class={notice.isBad ? "notice bad" : "notice"} onClick={() => shown.set(undefined)}>
          {notice.text}
        </p>
      )}
    </div>
  );
}
