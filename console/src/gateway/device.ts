import type {ApiRequest} from "../model/answers.ts";
import type {Constants, FrontPortState, OntSNFormat, PonPort, PonPortState, SystemState} from "olt_api";
import {configuration, elements, paths} from "../model/paths.ts";
import type {SerialFormat} from "../model/serial.ts";
import {useLive, type Live} from "./live.ts";
import {constantsRequest} from "./session.ts";

/** Intervals in s: what moves fast, what moves slowly, what hardly moves. */
const lively = 5;
const slow = 15;
const rare = 60;

const get = (path: string, indices?: string[]): ApiRequest => ({path, method: "get", ...(indices && {indices})});

export const useConstants = (): Live<Constants> => useLive(constantsRequest, 3600);
export const useSystem = (): Live<SystemState> => useLive(get(paths.system), lively);

export function useFrontPorts(): Live<FrontPortState[]> {
  const count = useConstants().data?.FRONT_PORT_COUNT;
  return useLive(count ? get(paths.frontPorts, [`1-${count}`]) : undefined, slow);
}

export function usePonPorts(): Live<PonPortState[]> {
  const count = useConstants().data?.PON_PORT_COUNT;
  return useLive(count ? get(paths.ponPorts, [`1-${count}`]) : undefined, slow);
}

/** Of all PON ports, the first one first. */
export function usePonPortConfigurations(): Live<PonPort[]> {
  const count = useConstants().data?.PON_PORT_COUNT;
  return useLive(
    count ? {...get(configuration(elements.ponPort), [`1-${count}`]), config_type: "running"} : undefined,
    rare,
  );
}

export function useSerialFormat(): SerialFormat {
  const {data} = useLive<OntSNFormat>({...get(configuration(elements.serialFormat)), config_type: "running"}, rare);
  return data?.format ?? "vendor_hex";
}
