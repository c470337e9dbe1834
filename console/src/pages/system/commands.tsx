import {useState} from "preact/hooks";

import {noteEdit} from "../../gateway/edits.ts";
import {request, useMay} from "../../gateway/session.ts";
import {paths} from "../../model/paths.ts";
import {notify} from "../../ui/notice.tsx";
import {Question} from "../../ui/question.tsx";
import {save} from "../configuration/commands.ts";
import {Returning} from "./returning.tsx";

type Command = "reboot" | "reconfigure" | "factory";

const texts: Readonly<Record<Command, {title: string; verb: string; what: string; about: string}>> = {
  reboot: {
    title: "Reboot the OLT",
    verb: "Reboot",
    about: "Starts again with the saved configuration and the chosen firmware.",
    what: "All subscribers lose service until the OLT and its ONTs are up again. What was not saved is lost: the saved configuration runs afterwards.",
  },
  reconfigure: {
    title: "Start all PON ports again",
    verb: "Start again",
    about: "All ONTs are activated anew; nothing else is touched.",
    what: "Every ONT goes through its activation again; subscribers are without service for a minute or two.",
  },
  factory: {
    title: "Factory configuration",
    verb: "Put into candidate",
    about: "Makes the candidate the factory state. Nothing runs differently before a commit.",
    what: "The candidate becomes the factory configuration; all pending changes are lost. Only a commit brings it into force.",
  },
};

/** What acts on the whole OLT. */
export function Commands() {
  const mayAct = useMay("administrator");
  const [asked, setAsked] = useState<Command>();
  const [leftAt, setLeftAt] = useState<number>();
  if (!mayAct) return null;
  const carryOut = async (command: Command) => {
    if (command === "reboot") {
      await request({path: paths.reboot, method: "command"});
      setLeftAt(Date.now());
    } else if (command === "reconfigure") {
      await request({path: paths.reconfigureOlt, method: "command"});
      notify("All PON ports start again.");
    } else {
      await request({path: paths.factory, method: "command"});
      noteEdit();
      notify("The candidate is the factory configuration.");
    }
  };
  return (
    <section class="card" aria-label="Commands">
      <header>
        <h2>Commands</h2>
      </header>
      <div class="body commands">
        {leftAt && (
          <Returning
            since={leftAt}
            onBack={() => {
              setLeftAt(undefined);
              notify("The OLT is back.");
            }}
          />
        )}
        <div>
          <span>
            <strong>Save configuration</strong>
            <small class="muted">Keeps what runs now for the next start.</small>
          </span>
          <button
            onClick={() =>
              void save().then(
                () => notify("Saved."),
                (error: Error) => notify(error.message, true),
              )
            }>
            Save
          </button>
        </div>
        {(Object.keys(texts) as Command[]).map(command => (
          <div key={command}>
            <span>
              <strong>{texts[command].title}</strong>
              <small class="muted">{texts[command].about}</small>
            </span>
            <button class={command === "reboot" ? "danger" : ""} onClick={() => setAsked(command)}>
              {texts[command].verb}
            </button>
          </div>
        ))}
        {asked && (
          <Question
            title={`${texts[asked].title}?`}
            verb={texts[asked].verb}
            isDangerous
            onYes={() => carryOut(asked)}
            onClose={() => setAsked(undefined)}>
            <p>{texts[asked].what}</p>
          </Question>
        )}
      </div>
    </section>
  );
}
