import type {Element} from "./elements.ts";

export interface FieldChange {
  /** "servers.1.address" */
  path: string;
  running: unknown;
  candidate: unknown;
}

export interface Change {
  element: Element;
  indices: readonly number[];
  fields: FieldChange[];
  running: Record<string, unknown>;
}

const isObject = (value: unknown): value is Record<string, unknown> =>
  typeof value === "object" && value !== null && !Array.isArray(value);
const isRecords = (value: unknown): value is unknown[] => Array.isArray(value) && value.some(isObject);
const same = (a: unknown, b: unknown) => JSON.stringify(a) === JSON.stringify(b);

/** The fields in which two records of one element differ; lists of plain values differ as a whole. */
export function differences(running: unknown, candidate: unknown, path = ""): FieldChange[] {
  if (same(running, candidate)) return [];
  const below = (key: string | number) => (path === "" ? String(key) : `${path}.${key}`);
  if (isObject(running) && isObject(candidate)) {
    return Object.keys({...running, ...candidate}).flatMap(key =>
      differences(running[key], candidate[key], below(key)),
    );
  }
  if ((isRecords(running) || isRecords(candidate)) && Array.isArray(running) && Array.isArray(candidate)) {
    const length = Math.max(running.length, candidate.length);
    return Array.from({length}, (_, index) => differences(running[index], candidate[index], below(index))).flat();
  }
  return [{path, running, candidate}];
}
