import {groups, type Group, type Ont} from "./onts.ts";

export type Counts = Record<Group, number>;

export function countGroups(onts: Iterable<Ont>): Counts {
  const counts = Object.fromEntries(groups.map(({id}) => [id, 0])) as Counts;
  for (const ont of onts) counts[ont.group]++;
  return counts;
}

export interface PortSummary {
  onts: Ont[];
  counts: Counts;
  configured: number;
}

export function summariseByPort(onts: readonly Ont[]): Map<number, PortSummary> {
  const byPort = new Map<number, Ont[]>();
  for (const ont of onts) {
    const there = byPort.get(ont.port);
    if (there) there.push(ont);
    else byPort.set(ont.port, [ont]);
  }
  return new Map(
    [...byPort].map(([port, there]) => [
      port,
      {onts: there, counts: countGroups(there), configured: there.filter(({ont}) => ont > 0).length},
    ]),
  );
}
