import {useEffect, useState} from "preact/hooks";

import {request, useMay} from "../../gateway/session.ts";
import type {SystemState} from "olt_api";
import {duration} from "../../model/format.ts";
import {paths} from "../../model/paths.ts";
import {notify} from "../../ui/notice.tsx";
import {Question} from "../../ui/question.tsx";
import {Status} from "../../ui/status.tsx";

/** Writing the flash may take minutes. */
const patience = 600;

/** The two slots, an image for the one that does not run, and which one runs after the next boot. */
export function Firmware({system}: {system?: SystemState}) {
  const mayChange = useMay("administrator");
  const [path, setPath] = useState("");
  const [began, setBegan] = useState<number>();
  const [failure, setFailure] = useState("");
  const [asked, setAsked] = useState<"current" | "alternate">();
  const device = system?.device_info;
  const isNext = (version: string) => device?.next_boot_fw === version;

  const update = async () => {
    setBegan(Date.now());
    setFailure("");
    try {
      await request({path: paths.firmwareUpdate, method: "command", data: {path}}, {patience});
      notify("The image is written to the alternate slot. Choose it for the next boot, then reboot.");
    } catch (error) {
      setFailure(`${(error as Error).message}. The device's events log says why.`);
    } finally {
      setBegan(undefined);
    }
  };
  const slot = (title: string, version: string | undefined, which: "current" | "alternate") => (
    <tr>
      <td>{title}</td>
      <td>
        <strong>{version || "no valid image"}</strong>
      </td>
      <td>{version !== undefined && isNext(version) && <Status level="good">next boot</Status>}</td>
      <td class="number">
        {mayChange && version && !isNext(version) && (
          <button class="small" onClick={() => setAsked(which)}>
            Boot next time
          </button>
        )}
      </td>
    </tr>
  );
  return (
    <section class="card" aria-label="Firmware">
      <header>
        <h2>Firmware</h2>
      </header>
      <div class="body">
        <table class="plain">
          <tbody>
            {slot("Running", device?.active_fw, "current")}
            {slot("Alternate", device?.inactive_fw, "alternate")}
          </tbody>
        </table>
        {mayChange && (
          <form
            class="update"
            onSubmit={event => {
              event.preventDefault();
              void update();
            }}>
            <label class="stacked">
              Image on the device
              <input
                value={path}
                required
                placeholder="/firmware/new.img"
                spellcheck={false}
                disabled={began !== undefined}
                onInput={event => setPath(event.currentTarget.value)}
              />
            </label>
            <button disabled={began !== undefined || path === ""}>
              {began ? "Writing…" : "Write to alternate slot"}
            </button>
          </form>
        )}
        {began && <Writing since={began} />}
        {failure && (
          <p class="failure" role="alert">
            {failure}
          </p>
        )}
        {asked && (
          <Question
            title="Choose the firmware of the next boot?"
            verb="Choose"
            onClose={() => setAsked(undefined)}
            onYes={async () => {
              await request({
                path: asked === "current" ? paths.firmwareCurrent : paths.firmwareAlternate,
                method: "command",
              });
              notify("Chosen. It runs after the next reboot.");
            }}>
            <p>
              After the next reboot the OLT runs {asked === "current" ? device?.active_fw : device?.inactive_fw}.
              Nothing changes before that.
            </p>
          </Question>
        )}
      </div>
    </section>
  );
}

function Writing({since}: {since: number}) {
  const [now, setNow] = useState(since);
  useEffect(() => {
    const timer = setInterval(() => setNow(Date.now()), 1000);
    return () => clearInterval(timer);
  }, []);
  return (
    <div role="status">
      <progress aria-label="Writing" />
      <p class="muted small">
        The device is writing the image, for {duration((now - since) / 1000)} now. Other requests may have to wait; do
        not switch it off.
      </p>
    </div>
  );
}
