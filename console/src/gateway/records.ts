import type {ConfigType} from "olt_api";
import {useEffect, useState} from "preact/hooks";

import {configuration} from "../model/paths.ts";
import {useStore} from "../model/store.ts";
import type {AskOptions} from "./http.ts";
import {edits} from "./edits.ts";
import {request} from "./session.ts";

/** A record of any element; its schema says what is in it. */
export type RecordData = Record<string, unknown>;

/** One record; indices that name several give them all, in their order. */
export async function readRecords<T>(
  element: string,
  indices: readonly (string | number)[],
  from: ConfigType,
  options?: AskOptions,
): Promise<T> {
  return request<T>(
    {
      path: configuration(element),
      method: "get",
      config_type: from,
      ...(indices.length > 0 && {indices: indices.map(String)}),
    },
    options,
  );
}

/** One record, whose indices are single numbers. */
export async function readRecord(
  element: string,
  indices: readonly number[],
  from: ConfigType,
  options?: AskOptions,
): Promise<RecordData> {
  const answer = await readRecords<RecordData | RecordData[]>(element, indices, from, options);
  return Array.isArray(answer) ? answer[0]! : answer;
}

/** Writes the whole record into the candidate. */
export async function setRecord(element: string, indices: readonly number[], data: RecordData): Promise<void> {
  await request({
    path: configuration(element),
    method: "set",
    config_type: "candidate",
    data,
    ...(indices.length > 0 && {indices: indices.map(String)}),
  });
}

/** Gives a record of the candidate its initial state. */
export async function clearRecord(element: string, indices: readonly number[], canDelete: boolean): Promise<void> {
  if (canDelete)
    await request({
      path: configuration(element),
      method: "delete",
      config_type: "candidate",
      indices: indices.map(String),
    });
  else await setRecord(element, indices, {});
}

export interface Read<T> {
  data?: T;
  error?: string;
}

/** What the records are, read again after each edit of this page; undefined reads nothing. */
export function useRecords<T>(
  element: string | undefined,
  indices: readonly (string | number)[],
  from: ConfigType,
): Read<T> {
  const turn = useStore(edits);
  const [read, setRead] = useState<Read<T>>({});
  const key = `${element} ${indices.join(" ")} ${from}`;
  useEffect(() => {
    if (!element) return;
    let isCurrent = true;
    readRecords<T>(element, indices, from, {isBackground: true}).then(
      data => {
        if (isCurrent) setRead({data});
      },
      (error: Error) => {
        if (isCurrent) setRead({error: error.message});
      },
    );
    return () => {
      isCurrent = false;
    };
  }, [key, turn]);
  return read;
}
