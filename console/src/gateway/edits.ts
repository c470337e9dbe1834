import {Store} from "../model/store.ts";

/** Counts the edits of this page, so that whatever shows the configuration reads it again. */
export const edits = new Store(0);

/** Services that this page has edited, as "3/17/2": they are too many to look at all of them after each edit. */
export const editedServices = new Set<string>();

export function noteEdit(): void {
  edits.set(edits.value + 1);
}
