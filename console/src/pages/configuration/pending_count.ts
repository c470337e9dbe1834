import {useEffect} from "preact/hooks";

import {edits} from "../../gateway/edits.ts";
import {findPending, pending} from "../../gateway/pending.ts";
import {useStore} from "../../model/store.ts";

/** How many records are pending; looked for at the start and after each edit of this page. */
export function usePendingCount(): number {
  const turn = useStore(edits);
  useEffect(() => {
    const timer = setTimeout(() => void findPending(false).catch(() => undefined), turn === 0 ? 1500 : 100);
    return () => clearTimeout(timer);
  }, [turn]);
  return useStore(pending)?.length ?? 0;
}
