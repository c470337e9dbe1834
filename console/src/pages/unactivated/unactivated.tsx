import {useState} from "preact/hooks";

import {useOnts} from "../../gateway/onts.ts";
import {useMay} from "../../gateway/session.ts";
import type {Ont} from "../../model/onts.ts";
import {useStore} from "../../model/store.ts";
import {changeQuery, place} from "../../ui/route.ts";
import {VirtualTable} from "../../ui/virtual_table.tsx";
import {Adopt} from "./adopt.tsx";
import {Adopted, adopted} from "./adopted.tsx";

/** ONTs that are connected, but not configured. */
export function Unactivated() {
  const {rows, isKnown, error} = useOnts();
  const mayAdopt = useMay("operator");
  const text = useStore(place).query.get("q") ?? "";
  const [chosen, setChosen] = useState<Ont>();
  const recent = useStore(adopted);
  const fresh = rows.filter(({group, search}) => group === "unactivated" && search.includes(text.toLowerCase()));
  const button = (ont: Ont) =>
    mayAdopt && (
      <button
        class="small"
        onClick={event => {
          event.stopPropagation();
          setChosen(ont);
        }}>
        Adopt
      </button>
    );
  return (
    <div class="page fills">
      <div class="page-head">
        <h1>Unactivated ONTs</h1>
        <span class="muted">{isKnown ? fresh.length : (error ?? "Loading…")}</span>
        <div class="actions">
          <input
            class="search"
            type="search"
            placeholder="Filter by serial or port"
            aria-label="Filter"
            value={text}
            onInput={event => changeQuery({q: event.currentTarget.value})}
          />
        </div>
      </div>
      {recent.length > 0 && <Adopted />}
      <VirtualTable
        label="Unactivated ONTs"
        rows={fresh}
        keyOf={ont => ont.key}
        onOpen={mayAdopt ? setChosen : undefined}
        empty={isKnown ? "Every ONT that is connected is configured." : (error ?? "Loading…")}
        columns={[
          {id: "port", title: "Seen on", width: "110px", cell: ont => `PON port ${ont.port}`},
          {
            id: "serial",
            title: "Serial",
            width: "minmax(130px, 1fr)",
            cell: ont => <strong class="mono">{ont.serialText}</strong>,
          },
          {
            id: "password",
            title: "Password",
            width: "minmax(90px, 1fr)",
            cell: ont => <span class="mono muted">{ont.raw.password || "–"}</span>,
          },
          {id: "adopt", title: "", width: "88px", cell: button, isNumber: true},
        ]}
        narrow={ont => (
          <span class="line centred">
            <span>
              <strong class="mono">{ont.serialText}</strong>
              <br />
              <span class="muted">PON port {ont.port}</span>
            </span>
            {button(ont)}
          </span>
        )}
      />
      {chosen && <Adopt ont={chosen} onClose={() => setChosen(undefined)} />}
    </div>
  );
}
