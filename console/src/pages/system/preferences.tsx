import {useStore} from "../../model/store.ts";
import {theme, type Theme} from "../../ui/theme.ts";

const choices: readonly (readonly [Theme, string])[] = [
  ["system", "As the system"],
  ["light", "Light"],
  ["dark", "Dark"],
];

/** Of this browser. */
export function Preferences() {
  const chosen = useStore(theme);
  return (
    <section class="card" aria-label="This browser">
      <header>
        <h2>This browser</h2>
      </header>
      <div class="body">
        <div class="actions" role="group" aria-label="Colours">
          {choices.map(([id, title]) => (
            <button key={id} class="chip" aria-pressed={chosen === id} onClick={() => theme.set(id)}>
              {title}
            </button>
          ))}
        </div>
        <p class="muted small above">
          Keys: <kbd>/</kbd> filter, arrows and <kbd>Page</kbd> keys move in tables, <kbd>Enter</kbd> opens, the space
          bar selects, <kbd>Esc</kbd> closes.
        </p>
      </div>
    </section>
  );
}
