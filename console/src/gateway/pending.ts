import {elements} from "../model/paths.ts";
import type {Constants} from "olt_api";
import {differences, type Change} from "../model/difference.ts";
import {allElements, type Element} from "../model/elements.ts";
import {schemaOf} from "../model/schema.ts";
import {Store} from "../model/store.ts";
import {editedServices} from "./edits.ts";
import {readRecords} from "./records.ts";
import {constantsRequest, request} from "./session.ts";

/** What differs between candidate and running, as far as it was looked for last; undefined before that. */
export const pending = new Store<readonly Change[] | undefined>(undefined);

type Records = Record<string, unknown>;
const own = {isBackground: true};

/** The indices that the position in an answer stands for; the last index counts first. */
function indicesAt(position: number, from: readonly (readonly number[])[]): number[] {
  return from.reduceRight<{rest: number; indices: number[]}>(
    ({rest, indices}, numbers) => ({
      rest: Math.floor(rest / numbers.length),
      indices: [numbers[rest % numbers.length]!, ...indices],
    }),
    {rest: position, indices: []},
  ).indices;
}

async function compare(element: Element, numbers: readonly (readonly number[])[]): Promise<Change[]> {
  const indices = numbers.map(list => (list.length > 1 ? `${list[0]}-${list.at(-1)}` : `${list[0]}`));
  const [running, candidate] = await Promise.all([
    readRecords<Records | Records[]>(element.path, indices, "running", own),
    readRecords<Records | Records[]>(element.path, indices, "candidate", own),
  ]);
  const list = (answer: Records | Records[]) => (Array.isArray(answer) ? answer : [answer]);
  const [before, after] = [list(running), list(candidate)];
  return after.flatMap((record, position) => {
    const fields = differences(before[position], record);
    return fields.length > 0
      ? [{element, indices: indicesAt(position, numbers), fields, running: before[position]!}]
      : [];
  });
}

const upTo = (size: number) => Array.from({length: size}, (_, index) => index + 1);

/** Services of ONTs: those of all ports, a port at a time, or those only that this page has edited. */
async function compareServices(device: Constants, all: boolean): Promise<Change[]> {
  const element = allElements.find(({path}) => path === elements.service)!;
  const [ports, onts, services] = element.sizes(device) as [number, number, number];
  const found: Change[] = [];
  if (all) {
    for (const port of upTo(ports)) found.push(...(await compare(element, [[port], upTo(onts), upTo(services)])));
    for (const {indices} of found) editedServices.add(indices.join("/"));
  } else {
    for (const key of editedServices)
      found.push(
        ...(await compare(
          element,
          key.split("/").map(index => [Number(index)]),
        )),
      );
  }
  return found;
}

let running: Promise<void> | undefined;

/** Looks for pending changes; `all` looks at every service, too, which takes a while on a full OLT. */
export async function findPending(all: boolean): Promise<void> {
  await running?.catch(() => undefined);
  running = find(all);
  await running;
}

async function find(all: boolean): Promise<void> {
  const device = await request<Constants>(constantsRequest, own);
  const changes: Change[] = [];
  for (const element of allElements) {
    if (!schemaOf(element.path)?.setBy || element.path === elements.service) continue;
    changes.push(...(await compare(element, element.sizes(device).map(upTo))));
  }
  pending.set([...changes, ...(await compareServices(device, all))]);
}
