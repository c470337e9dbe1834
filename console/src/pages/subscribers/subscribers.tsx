import {useStore} from "../../model/store.ts";
import {changeQuery, go, place} from "../../ui/route.ts";
import {Groups} from "./groups.tsx";
import {Leases} from "./leases.tsx";
import {Macs} from "./macs.tsx";
import {Pppoe} from "./pppoe.tsx";

const tabs = [
  {id: "leases", title: "DHCP leases", view: Leases},
  {id: "pppoe", title: "PPPoE sessions", view: Pppoe},
  {id: "groups", title: "Multicast groups", view: Groups},
  {id: "macs", title: "MAC addresses", view: Macs},
] as const;

/** What lies behind the ONTs; a search by MAC or IP address finds the ONT. */
export function Subscribers({tab}: {tab?: string}) {
  const query = useStore(place).query;
  const text = query.get("q") ?? "";
  const current = tabs.find(({id}) => id === tab) ?? tabs[0];
  const View = current.view;
  return (
    <div class="page fills">
      <div class="page-head">
        <h1>Subscribers</h1>
        <div class="actions">
          <input
            class="search"
            type="search"
            placeholder="MAC, IP address, ONT, serial…"
            aria-label="Search"
            value={text}
            onInput={event => changeQuery({q: event.currentTarget.value})}
          />
        </div>
      </div>
      <div class="tabs" role="tablist" aria-label="Kinds">
        {tabs.map(({id, title}) => (
          <button
            key={id}
            role="tab"
            aria-selected={id === current.id}
            onClick={() => go(`/subscribers/${id}${text ? `?q=${encodeURIComponent(text)}` : ""}`)}>
            {title}
          </button>
        ))}
      </div>
      <View text={searched(text)} />
    </div>
  );
}

/** MAC addresses may be typed with any separator, or none. */
function searched(text: string): string {
  const bare = text.trim().replace(/[-.\s]/g, "");
  return /^[0-9a-f]{6,12}$/i.test(bare) && !/^\d+$/.test(text.trim())
    ? bare
        .match(/.{1,2}/g)!
        .join(":")
        .toLowerCase()
    : text.trim().toLowerCase();
}
