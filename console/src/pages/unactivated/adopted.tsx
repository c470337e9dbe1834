import {useOnts} from "../../gateway/onts.ts";
import {Store, useStore} from "../../model/store.ts";
import {OntStatus} from "../../ui/status.tsx";

/** ONTs that were adopted in this session of the page, the latest first. */
export const adopted = new Store<readonly string[]>([]);

export function noteAdopted(key: string): void {
  adopted.set([key, ...adopted.value.filter(other => other !== key)].slice(0, 5));
}

/** How those that were adopted come into service. */
export function Adopted() {
  const {rows} = useOnts();
  const keys = useStore(adopted);
  return (
    <ul class="card adopted" aria-label="Adopted">
      {keys.map(key => {
        const ont = rows.find(row => row.key === key);
        return (
          <li key={key}>
            <a href={`#/onts/${key}`}>
              <strong>ONT {key}</strong>
            </a>
            <span>{ont ? <OntStatus group={ont.group} state={ont.state} /> : "…"}</span>
            <span class="muted">{ont?.meaning}</span>
          </li>
        );
      })}
    </ul>
  );
}
