import {useState} from "preact/hooks";

import {request} from "../../gateway/session.ts";
import {counted} from "../../model/format.ts";
import type {Ont} from "../../model/onts.ts";
import {configuration, elements, paths} from "../../model/paths.ts";
import {ontIndices, rangeText} from "../../model/ranges.ts";
import {notify} from "../../ui/notice.tsx";
import {Question} from "../../ui/question.tsx";
import {noteEdit} from "../../gateway/edits.ts";
import {commit} from "../configuration/commands.ts";

type Action = "reboot" | "reset" | "reconfigure" | "delete";

interface Description {
  title: string;
  what: string;
  done: string;
  path?: string;
}

const actions: Readonly<Record<Action, Description>> = {
  reboot: {
    title: "Reboot",
    what: "They restart; their subscribers are without service for a minute or two.",
    done: "Restart ordered",
    path: paths.rebootOnt,
  },
  reset: {
    title: "Reset",
    what: "They forget what was set on them locally, such as Wi-Fi names and passwords, and restart.",
    done: "Reset ordered",
    path: paths.resetOnt,
  },
  reconfigure: {
    title: "Reconfigure",
    what: "Their services are taken away and set up anew from the running configuration.",
    done: "Reconfiguration ordered",
    path: paths.reconfigureOnt,
  },
  delete: {
    title: "Delete",
    what: "Their configuration is removed and the change committed; their subscribers lose service. The ONTs stay visible as unactivated.",
    done: "Deleted",
  },
};

/** Acts on ONTs, after a question that says what will happen. */
export function OntActions({onts, onDone, isPlain}: {onts: readonly Ont[]; onDone?: () => void; isPlain?: boolean}) {
  const [asked, setAsked] = useState<Action>();
  const carryOut = async (action: Action) => {
    const {path, done} = actions[action];
    if (path) await request({path, method: "command", indices: ontIndices(onts)});
    else await remove(onts);
    notify(`${done}: ${counted(onts.length, "ONT")}.`);
    onDone?.();
  };
  return (
    <div class={isPlain ? "actions" : "actions selection"} role="toolbar" aria-label="Actions on the selection">
      {!isPlain && <strong>{counted(onts.length, "ONT")} selected</strong>}
      {(Object.keys(actions) as Action[]).map(action => (
        <button key={action} class={action === "delete" ? "danger" : ""} onClick={() => setAsked(action)}>
          {actions[action].title}
        </button>
      ))}
      {!isPlain && (
        <button class="plain" onClick={onDone}>
          Clear selection
        </button>
      )}
      {asked && (
        <Question
          title={`${actions[asked].title} ${onts.length === 1 ? `ONT ${onts[0]!.key}` : counted(onts.length, "ONT")}?`}
          verb={actions[asked].title}
          isDangerous={asked === "delete" || asked === "reset"}
          onYes={() => carryOut(asked)}
          onClose={() => setAsked(undefined)}>
          <p>{actions[asked].what}</p>
          <p class="muted mono">
            {ontIndices(onts).slice(0, 20).join("  ")}
            {ontIndices(onts).length > 20 && " …"}
          </p>
        </Question>
      )}
    </div>
  );
}

async function remove(onts: readonly Ont[]): Promise<void> {
  const ids = new Map<number, number[]>();
  for (const {port, ont} of onts) ids.set(port, [...(ids.get(port) ?? []), ont]);
  await request({
    path: configuration(elements.ont),
    method: "delete",
    config_type: "candidate",
    indices: [...ids].flatMap(([port, there]) => [String(port), rangeText(there)]),
  });
  noteEdit();
  await commit();
}
