import type {ComponentChildren} from "preact";

import {groups, levelOf, type Group} from "../model/onts.ts";

export type Level = "good" | "warn" | "bad" | "busy" | "off" | "new";

/** A state: its colour says how it is, its text what it is. */
export function Status({level, children, title}: {level: Level; children: ComponentChildren; title?: string}) {
  return (
    <span class={`status ${level}`} title={title}>
      <i aria-hidden="true" />
      {children}
    </span>
  );
}

export function OntStatus({group, state, title}: {group: Group; state: string; title?: string}) {
  return (
    <Status level={levelOf(group)} title={title}>
      {sentence(state)}
    </Status>
  );
}

/** "Serial number" of "SERIAL_NUMBER". */
export function sentence(state: string): string {
  return state.charAt(0) + state.slice(1).toLowerCase().replaceAll("_", " ");
}

/** How many ONTs are in which group, as one bar. */
export function GroupBar({counts, of}: {counts: Readonly<Record<Group, number>>; of: number}) {
  const text = groups
    .filter(({id}) => counts[id] > 0)
    .map(({id, title}) => `${counts[id]} ${title.toLowerCase()}`)
    .join(", ");
  return (
    <span class="group-bar" role="img" aria-label={text || "no ONTs"} title={text || "No ONTs"}>
      {groups
        .filter(({id}) => counts[id] > 0)
        .map(({id, level}) => (
          <i key={id} class={level} style={{width: `${(100 * counts[id]) / Math.max(1, of)}%`}} />
        ))}
    </span>
  );
}

/** A share of something, such as memory that is used. */
export function Meter({value, of, level = "good", label}: {value: number; of: number; level?: Level; label: string}) {
  return (
    <span
      class="meter"
      role="meter"
      aria-valuenow={Math.round(value)}
      aria-valuemax={Math.round(of)}
      aria-label={label}>
      <i class={level} style={{width: `${Math.min(100, (100 * value) / Math.max(of, 1e-9))}%`}} />
    </span>
  );
}
