import {Store} from "../model/store.ts";

export type Theme = "system" | "light" | "dark";

const isDark = matchMedia("(prefers-color-scheme: dark)");
const kept = localStorage.getItem("theme");

/** What the user chose. */
export const theme = new Store<Theme>(kept === "light" || kept === "dark" ? kept : "system");
/** What is on the screen. */
export const themeShown = new Store<"light" | "dark">("light");

function show() {
  const shown = theme.value === "system" ? (isDark.matches ? "dark" : "light") : theme.value;
  document.documentElement.dataset["theme"] = shown;
  themeShown.set(shown);
}

export function followTheme(): void {
  show();
  isDark.addEventListener("change", show);
  theme.subscribe(() => {
    localStorage.setItem("theme", theme.value);
    show();
  });
}
