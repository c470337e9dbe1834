import {noteEdit} from "../../gateway/edits.ts";
import {request} from "../../gateway/session.ts";
import {paths} from "../../model/paths.ts";

/** Puts the candidate into force; throws Refused with the path of the record at fault. */
export async function commit(): Promise<void> {
  await request({path: paths.commit, method: "command"}, {patience: 60});
  noteEdit();
}

export async function rollback(): Promise<void> {
  await request({path: paths.rollback, method: "command"});
  noteEdit();
}

export async function save(): Promise<void> {
  await request({path: paths.save, method: "command"}, {patience: 60});
}
