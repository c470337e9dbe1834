import type {ComponentChildren} from "preact";
import {useEffect, useState} from "preact/hooks";

import {trouble} from "./gateway/live.ts";
import {current, leave} from "./gateway/session.ts";
import {useOnts} from "./gateway/onts.ts";
import {usePendingCount} from "./pages/configuration/pending_count.ts";
import {Configuration} from "./pages/configuration/configuration.tsx";
import {Login} from "./pages/login.tsx";
import {OneOnt} from "./pages/ont/one_ont.tsx";
import {Onts} from "./pages/onts/onts.tsx";
import {Overview} from "./pages/overview/overview.tsx";
import {Subscribers} from "./pages/subscribers/subscribers.tsx";
import {SystemPage} from "./pages/system/system.tsx";
import {Unactivated} from "./pages/unactivated/unactivated.tsx";
import {useStore} from "./model/store.ts";
import {useSystem} from "./gateway/device.ts";
import {Notice} from "./ui/notice.tsx";
import {place} from "./ui/route.ts";
import {SessionWatch} from "./ui/session_watch.tsx";

export function App() {
  const session = useStore(current);
  if (session === undefined) return null;
  return session ? <Shell /> : <Login />;
}

function Shell() {
  const {path} = useStore(place);
  const stuck = useStore(trouble);
  return (
    <div class="shell">
      <a
        class="skip"
        href="#content"
        onClick={event => {
          event.preventDefault();
          document.getElementById("content")?.focus();
        }}>
        Skip to content
      </a>
      <Side at={path[0] ?? ""} />
      <main class="main" id="content" tabIndex={-1}>
        <SessionWatch />
        {stuck && (
          <p class="banner" role="alert">
            {stuck} Trying again…
          </p>
        )}
        <Page path={path} />
      </main>
      <Notice />
    </div>
  );
}

function Page({path}: {path: readonly string[]}) {
  const [first, second, third] = path;
  switch (first) {
    case "onts":
      return second && third ? (
        <OneOnt key={`${second}/${third}`} port={Number(second)} ont={Number(third)} />
      ) : (
        <Onts />
      );
    case "unactivated":
      return <Unactivated />;
    case "configuration":
      return <Configuration path={path.slice(1)} />;
    case "subscribers":
      return <Subscribers tab={second} />;
    case "system":
      return <SystemPage />;
    default:
      return <Overview />;
  }
}

function Side({at}: {at: string}) {
  const [isOpen, setOpen] = useState(false);
  useEffect(() => setOpen(false), [location.hash]);
  const {data} = useSystem();
  const session = useStore(current)!;
  const {rows} = useOnts();
  const unactivated = rows.filter(({group}) => group === "unactivated").length;
  const pending = usePendingCount();
  const link = (to: string, title: string, pill?: ComponentChildren) => (
    <a href={`#/${to}`} aria-current={at === to ? "page" : undefined} onClick={() => setOpen(false)}>
      {title}
      {pill}
    </a>
  );
  const name = data?.device_info.hostname ?? "OLT";
  useEffect(() => {
    document.title = `${name} – OLT console`;
  }, [name]);
  return (
    <header class={isOpen ? "side open" : "side"}>
      <div class="brand">
        <img src="/icon.svg" alt="" />
        <div>
          <strong>{name}</strong>
          <small>{data?.factory_info.device_type ?? " "}</small>
        </div>
      </div>
      <button class="menu-button" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)}>
        Menu
      </button>
      <nav aria-label="Pages">
        {link("", "Overview")}
        {link("onts", "ONTs")}
        {link("unactivated", "Unactivated", unactivated > 0 && <span class="pill new">{unactivated}</span>)}
        {link("subscribers", "Subscribers")}
        {link(
          "configuration",
          "Configuration",
          pending > 0 && (
            <span class="pill warn" title="Pending changes">
              {pending}
            </span>
          ),
        )}
        {link("system", "System")}
      </nav>
      <div class="user">
        <div>
          <span>
            <strong>{session.user}</strong>
            <br />
            <small class="muted">{session.privilege}</small>
          </span>
          <button onClick={() => void leave()}>Log out</button>
        </div>
      </div>
    </header>
  );
}
