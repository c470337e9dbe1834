import {Store} from "../model/store.ts";

/** Where the user is: "#/onts/3/17?state=failed" is ["onts", "3", "17"] and its query. */
export interface Place {
  path: readonly string[];
  query: URLSearchParams;
}

function read(): Place {
  const [path = "", query = ""] = location.hash.replace(/^#\/?/, "").split("?");
  return {
    path: path
      .split("/")
      .filter(part => part !== "")
      .map(decodeURIComponent),
    query: new URLSearchParams(query),
  };
}

export const place = new Store<Place>(read());

export function followPlace(): void {
  addEventListener("hashchange", () => place.set(read()));
}

export function go(to: string): void {
  location.hash = to;
}

/** The same page with another query, without a step back in the browser's history. */
export function changeQuery(changes: Readonly<Record<string, string>>): void {
  const {path, query} = read();
  for (const [name, value] of Object.entries(changes)) {
    if (value === "") query.delete(name);
    else query.set(name, value);
  }
  const text = query.toString();
  history.replaceState(null, "", `#/${path.join("/")}${text ? `?${text}` : ""}`);
  place.set(read());
}
