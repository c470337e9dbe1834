import {useState} from "preact/hooks";

import {useSystem} from "../../gateway/device.ts";
import {request} from "../../gateway/session.ts";
import type {SystemState} from "olt_api";
import {paths} from "../../model/paths.ts";
import {Board} from "../overview/board.tsx";
import {Commands} from "./commands.tsx";
import {Firmware} from "./firmware.tsx";
import {LogFiles} from "./log_files.tsx";
import {Preferences} from "./preferences.tsx";

export function SystemPage() {
  const {data} = useSystem();
  return (
    <div class="page">
      <div class="page-head">
        <h1>System</h1>
      </div>
      <div class="system-grid">
        <Board system={data} />
        <div class="column">
          <Firmware system={data} />
          <Identity system={data} />
          <Preferences />
        </div>
        <div class="column">
          <Commands />
          <LogFiles />
        </div>
      </div>
    </div>
  );
}

function Identity({system}: {system?: SystemState}) {
  const factory = system?.factory_info;
  return (
    <section class="card" aria-label="Identity">
      <header>
        <h2>Identity</h2>
      </header>
      <dl class="body facts">
        <dt>Device</dt>
        <dd>
          {factory?.device_type} <span class="muted">{factory?.board_version}</span>
        </dd>
        <dt>Serial number</dt>
        <dd class="mono">{factory?.serial_number}</dd>
        <dt>MAC address</dt>
        <dd class="mono">{factory?.mac_address}</dd>
        <dt>FPGA, PLD</dt>
        <dd>
          {system?.device_info.fpga_version}, {system?.device_info.pld_version}
        </dd>
        <EngineId />
      </dl>
    </section>
  );
}

/** That of this board, made when it is asked for. */
function EngineId() {
  const [text, setText] = useState("");
  const [failure, setFailure] = useState("");
  const find = () => {
    request<string>({path: paths.engineId, method: "generate"}).then(setText, (error: Error) =>
      setFailure(error.message),
    );
  };
  return (
    <>
      <dt>SNMP engine id</dt>
      <dd>
        {text ? (
          <span class="mono">{text}</span>
        ) : (
          <button class="small" onClick={find}>
            Show
          </button>
        )}
        {failure && <span class="failure">{failure}</span>}
      </dd>
    </>
  );
}
