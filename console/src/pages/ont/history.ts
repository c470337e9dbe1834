import {useMemo} from "preact/hooks";

import type {Ont} from "../../model/onts.ts";

export interface Moment {
  at: number;
  state: string;
  group: Ont["group"];
}

const most = 50;
const histories = new Map<string, Moment[]>();

/** The states that an ONT has been seen in since the page was opened, the latest first. */
export function useHistory(ont: Ont | undefined): readonly Moment[] {
  return useMemo(() => {
    if (!ont) return [];
    const known = histories.get(ont.key) ?? [];
    if (known[0]?.state === ont.state) return known;
    const now = [{at: Date.now(), state: ont.state, group: ont.group}, ...known].slice(0, most);
    histories.set(ont.key, now);
    return now;
  }, [ont?.key, ont?.state]);
}
