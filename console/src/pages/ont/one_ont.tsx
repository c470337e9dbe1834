import type {OntState} from "olt_api";
import {useMemo} from "preact/hooks";

import {usePonPortConfigurations, useSerialFormat} from "../../gateway/device.ts";
import {useLive} from "../../gateway/live.ts";
import {useMay} from "../../gateway/session.ts";
import type {PonCounters} from "../../model/counters.ts";
import {ontOf} from "../../model/onts.ts";
import {paths} from "../../model/paths.ts";
import {OntStatus} from "../../ui/status.tsx";
import {OntActions} from "../onts/ont_actions.tsx";
import {Counters} from "./counters.tsx";
import {OntConfiguration} from "./ont_configuration.tsx";
import {Optics} from "./optics.tsx";
import {StateCard} from "./state_card.tsx";
import {OntSubscribers} from "./ont_subscribers.tsx";
import {Traffic} from "./traffic.tsx";

/** Everything of one ONT, live, with its configuration beside it. */
export function OneOnt({port, ont: number}: {port: number; ont: number}) {
  const indices = [String(port), String(number)];
  const {data, error} = useLive<OntState[]>({path: paths.onts, method: "get", indices}, 2);
  const counters = useLive<PonCounters[]>({path: `${paths.counters}olt_side.pon`, method: "get", indices}, 2);
  const format = useSerialFormat();
  const ports = usePonPortConfigurations().data;
  const mayAct = useMay("operator");
  const ont = useMemo(() => {
    const raw = data?.find(({cfg_port, cfg_ont_id}) => cfg_port === port && cfg_ont_id === number);
    return raw && ontOf(raw, format, of => ports?.[of - 1]?.odn_class);
  }, [data, format, ports]);
  const odnClass = ports?.[(ont?.seenAt ?? port) - 1]?.odn_class;
  return (
    <div class="page">
      <div class="page-head">
        <h1>
          <a href="#/onts" class="back">
            ONTs
          </a>{" "}
          / {port}/{number}
        </h1>
        {ont && <OntStatus group={ont.group} state={ont.state} />}
        {ont?.description && <span class="muted">{ont.description}</span>}
        {mayAct && ont && <OntActions onts={[ont]} isPlain />}
      </div>
      {error && <p class="failure">{error}</p>}
      {data && !ont && (
        <p class="card empty">
          ONT {port}/{number} is not configured.{" "}
          <a href={`#/configuration/ZebGCfg.pon.ont/${port}/${number}`}>Configure it</a> or{" "}
          <a href="#/unactivated">adopt one that is connected</a>.
        </p>
      )}
      {ont && (
        <div class="ont-grid">
          <div class="column">
            <div class="pair">
              <StateCard ont={ont} />
              <Optics ont={ont} odnClass={odnClass} />
            </div>
            <Traffic live={counters} />
            <Counters port={port} ont={number} pon={counters.data?.[0]} />
          </div>
          <div class="column">
            <OntConfiguration port={port} ont={number} />
            <OntSubscribers port={port} ont={number} />
          </div>
        </div>
      )}
    </div>
  );
}
