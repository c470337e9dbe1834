/** Everything that the page sends over the network. */
import type {Privilege} from "olt_api";

import {Refused, Unreachable, type ApiAnswer, type ApiRequest} from "../model/answers.ts";

export interface Session extends TimeLeft {
  user: string;
  privilege: Privilege;
  idle_timeout_s: number;
  absolute_timeout_s: number;
}

/** Of a session, in s. */
export interface TimeLeft {
  /** Until it ends unless its user does something. */
  idle_left_s: number;
  /** Until it ends in any case. */
  left_s: number;
}

export type EndReason = "logged_out" | "idle" | "absolute" | "displaced" | "service_restarted" | "console_stopped";

/** The session is over. */
export class LoggedOut extends Error {
  constructor(readonly reason: EndReason | null) {
    super("The session is over.");
  }
}

export interface AskOptions {
  /** How long the answer may take, in s; without it the gateway's limit holds. */
  patience?: number;
  /** The page asks by itself: this does not count as the user's doing. */
  isBackground?: boolean;
}

const loginRefusals: Readonly<Record<string, string>> = {
  InvalidCredentials: "Wrong user name or password.",
  PrivilegeNotSet: "This user may not use the console.",
};

const headers = {"Content-Type": "application/json", "X-OLT-Console": "1"};

async function send(
  method: "GET" | "POST",
  path: string,
  body?: unknown,
  more: Record<string, string> = {},
): Promise<Response> {
  try {
    const text = body === undefined ? undefined : JSON.stringify(body);
    return await fetch(path, {method, headers: {...headers, ...more}, body: text, credentials: "same-origin"});
  } catch {
    throw new Unreachable("The console's gateway cannot be reached.");
  }
}

/** The answer's JSON; what the gateway refuses is thrown. */
async function read<T>(response: Response): Promise<T> {
  const answer = await response.json().catch(() => ({message: `The gateway answered with status ${response.status}.`}));
  if (response.ok) return answer as T;
  if (response.status === 401 && answer.error === "no_session") throw new LoggedOut(answer.reason ?? null);
  if (response.status === 502 || response.status === 504) throw new Unreachable(answer.message);
  throw new Error(loginRefusals[answer.reason] ?? answer.message);
}

export const login = async (user: string, password: string) =>
  read<Session>(await send("POST", "/api/login", {user, password}));
export const logout = async () => {
  await send("POST", "/api/logout", {});
};
/** The user is there. */
export const stay = async () => read<Session>(await send("POST", "/api/session", {}));
/** Carries out one request. */
export async function ask<T>(request: ApiRequest, {patience, isBackground}: AskOptions = {}): Promise<T> {
  const more = {...(patience && {Prefer: `wait=${patience}`}), ...(isBackground && {"X-OLT-Background": "1"})};
  const answer = await read<ApiAnswer<T>>(await send("POST", "/api", request, more));
  if (!answer.success || answer.errors?.length) throw new Refused(answer.errors ?? []);
  return answer.data as T;
}

/** The session of this browser, if there is one. */
export async function session(): Promise<Session | {ended: EndReason | null}> {
  try {
    return await read<Session>(await send("GET", "/api/session"));
  } catch (error) {
    if (error instanceof LoggedOut) return {ended: error.reason};
    throw error;
  }
}

/** A request that is repeated, every so many seconds. */
export interface Watch {
  request: ApiRequest;
  every: number;
}

export interface StreamListener {
  onAnswer: (watch: number, answer: ApiAnswer<unknown>) => void;
  /** Why nothing comes; "" when things come again. */
  onTrouble: (text: string) => void;
  onTimeLeft: (left: TimeLeft) => void;
  onEnd: (reason: EndReason) => void;
  /** The gateway refuses the stream; the browser does not try again. */
  onRefused: () => void;
}

/** What the watches give, until the function that is returned is called. */
export function openStream(watches: readonly Watch[], listener: StreamListener): () => void {
  const list = watches.map(({request: {method: _, ...rest}, every}) => ({...rest, interval: 1000 * every}));
  const source = new EventSource(`/api/events?watch=${encodeURIComponent(JSON.stringify(list))}`);
  const on = <T>(name: string, take: (data: T) => void) =>
    source.addEventListener(name, event => take(JSON.parse((event as MessageEvent<string>).data)));
  on<{watch: number; answer: ApiAnswer<unknown>}>("answer", ({watch, answer}) => listener.onAnswer(watch, answer));
  on<{message: string}>("trouble", ({message}) => listener.onTrouble(message));
  on<{reachable: boolean}>("service", ({reachable}) =>
    listener.onTrouble(reachable ? "" : "The OLT's service is not running."),
  );
  on<TimeLeft>("session", left => listener.onTimeLeft(left));
  on<{reason: EndReason}>("end", ({reason}) => {
    source.close();
    listener.onEnd(reason);
  });
  source.onerror = () => {
    if (source.readyState === EventSource.CLOSED) listener.onRefused();
    else listener.onTrouble("The console's gateway cannot be reached.");
  };
  return () => source.close();
}
