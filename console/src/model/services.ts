import type {OntServices, OntTemplate, ProfileOntCrossConnect, ProfileOntDba} from "olt_api";

/** What a service of an ONT becomes once template, profiles and its own record are put together. */
export interface EffectiveService {
  number: number;
  /** Of its cross-connect profile; empty without one. */
  name: string;
  type: string;
  vlans: string;
  dba: string;
  isCustom: boolean;
  isOff: boolean;
  /** Down and up, 0 for none. */
  limits?: readonly [number, number];
}

export function effectiveServices(
  template: OntTemplate | undefined,
  services: readonly OntServices[],
  crossConnects: readonly ProfileOntCrossConnect[],
  dbas: readonly ProfileOntDba[],
): EffectiveService[] {
  return services.map((own, index) => {
    const source = own.mode === "custom" ? own : own.mode === "off" ? undefined : template?.services[index];
    const profile = source && crossConnects[source.cross_connect - 1];
    const isUsed = profile !== undefined && profile.name !== "";
    const outer = own.s_vid || profile?.s_vid || 0;
    const inner = own.c_vid || profile?.c_vid || 0;
    return {
      number: index + 1,
      name: isUsed ? profile.name : "",
      type: isUsed ? profile.service_type : "",
      vlans: `VLAN ${outer}${inner > 0 ? `.${inner}` : ""}`,
      dba: isUsed ? (dbas[source!.dba - 1]?.name ?? "") : "",
      isCustom:
        own.mode === "custom" || own.s_vid > 0 || own.c_vid > 0 || own.downstream_kbps > 0 || own.upstream_kbps > 0,
      isOff: own.mode === "off",
      limits: own.downstream_kbps > 0 || own.upstream_kbps > 0 ? [own.downstream_kbps, own.upstream_kbps] : undefined,
    };
  });
}
