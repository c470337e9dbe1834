import {useState} from "preact/hooks";

import {useLive} from "../../gateway/live.ts";
import {paths} from "../../model/paths.ts";

/** The API tells the names of the log files; they are read on the device. */
export function LogFiles() {
  const {data, error} = useLive<{log_files: string[]}>({path: paths.logs, method: "get"}, 60);
  const [text, setText] = useState("");
  const shown = (data?.log_files ?? []).filter(name => name.toLowerCase().includes(text.toLowerCase()));
  return (
    <section class="card" aria-label="Log files">
      <header>
        <h2>Log files</h2>
        <input
          type="search"
          placeholder="Filter"
          aria-label="Filter log files"
          value={text}
          onInput={event => setText(event.currentTarget.value)}
        />
      </header>
      <div class="body">
        {error && <p class="failure">{error}</p>}
        <ul class="log-files">
          {shown.map(name => (
            <li key={name} class="mono">
              {name}
            </li>
          ))}
        </ul>
        <p class="muted small">On the device, in var/log.</p>
      </div>
    </section>
  );
}
