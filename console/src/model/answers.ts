import type {ApiError} from "olt_api";

export type {ApiError};

/** What the API takes and gives. */

export interface ApiRequest {
  path: string;
  method: "get" | "set" | "delete" | "command" | "call" | "generate";
  indices?: readonly string[];
  config_type?: "candidate" | "running";
  data?: unknown;
}

export interface ApiAnswer<T> {
  success: boolean;
  data?: T;
  errors?: ApiError[];
}

/** The error's own text, with its parameters filled in. */
export function errorText(error: ApiError): string {
  return error.message.key.replace(/\{(p\d+)\}/g, (whole, name: string) =>
    String(error.message.params[name as `p${number}`] ?? whole),
  );
}

/** What the API refused, in its words. */
export class Refused extends Error {
  constructor(readonly errors: readonly ApiError[]) {
    super(errors.map(errorText).join("; ") || "Request could not be processed");
  }
}

/** No answer of the OLT: the gateway cannot be reached, or cannot reach the daemon. */
export class Unreachable extends Error {}
