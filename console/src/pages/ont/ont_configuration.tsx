import type {OntServices, OntTemplate, PonOnt, ProfileOntCrossConnect, ProfileOntDba} from "olt_api";

import {useRecords} from "../../gateway/records.ts";
import {elements} from "../../model/paths.ts";
import {effectiveServices} from "../../model/services.ts";
import {count} from "../../model/format.ts";
import {choiceText} from "../configuration/values.ts";

/** What is configured of the ONT, and what follows for its services; with the ways to the forms. */
export function OntConfiguration({port, ont}: {port: number; ont: number}) {
  const {data: records, error} = useRecords<PonOnt[]>(elements.ont, [port, ont], "running");
  const {data: services} = useRecords<OntServices[]>(elements.service, [port, ont, "1-8"], "running");
  const {data: templates} = useRecords<OntTemplate[]>(elements.template, ["1-32"], "running");
  const {data: crossConnects} = useRecords<ProfileOntCrossConnect[]>(elements.crossConnect, ["1-255"], "running");
  const {data: dbas} = useRecords<ProfileOntDba[]>(elements.dba, ["1-255"], "running");
  const record = records?.[0];
  const template = record && templates?.[record.ont_template - 1];
  const edit = `#/configuration/${elements.ont}/${port}/${ont}`;
  return (
    <section class="card" aria-label="Configuration">
      <header>
        <h2>Configuration</h2>
        <a href={edit} class="button">
          Edit
        </a>
      </header>
      <div class="body">
        {error && <p class="failure">{error}</p>}
        {record && (
          <dl class="facts">
            <dt>Description</dt>
            <dd>{record.description || "–"}</dd>
            <dt>Enabled</dt>
            <dd>{record.enabled ? "yes" : <span class="text-warn">no</span>}</dd>
            <dt>Template</dt>
            <dd>
              {template ? (
                <a href={`#/configuration/${elements.template}/${record.ont_template}`}>
                  {record.ont_template} {template.name}
                </a>
              ) : (
                "none"
              )}
            </dd>
          </dl>
        )}
        <h3 class="above">Services</h3>
        {record && services && crossConnects && dbas && (
          <table class="plain">
            <tbody>
              {effectiveServices(template, services, crossConnects, dbas).map(service => (
                <tr key={service.number}>
                  <td>{service.number}</td>
                  <td>
                    <a href={`#/configuration/${elements.service}/${port}/${ont}/${service.number}`}>
                      {service.name || (service.isOff ? "off" : "none")}
                    </a>
                    {service.isCustom && (
                      <>
                        {" "}
                        <span class="tag">own</span>
                      </>
                    )}
                    {service.type && (
                      <>
                        <br />
                        <small class="muted">
                          {choiceText(service.type)}, {service.vlans}
                        </small>
                      </>
                    )}
                  </td>
                  <td class="number">
                    <small class="muted">
                      {service.dba}
                      {service.limits && (
                        <>
                          <br />
                          {service.limits.map(limit => (limit > 0 ? count(limit) : "∞")).join(" / ")} kbit/s
                        </>
                      )}
                    </small>
                  </td>
                </tr>
              ))}
            </tbody>
          </table>
        )}
      </div>
    </section>
  );
}
