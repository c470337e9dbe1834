import type {Privilege} from "olt_api";

import {ask, login, logout, LoggedOut, session, stay, type AskOptions, type EndReason, type Session} from "./http.ts";
import {forgetAll, remember, timeLeft, whenSessionEnds} from "./live.ts";
import type {ApiRequest} from "../model/answers.ts";
import {paths} from "../model/paths.ts";
import {mayAct} from "../model/privilege.ts";
import {Store, useStore} from "../model/store.ts";

/** Who is logged in: undefined before that is known, null for nobody. */
export const current = new Store<Session | null | undefined>(undefined);
/** Why the last session ended, for the login page. */
export const farewell = new Store("");

const reasons: Readonly<Record<EndReason, string>> = {
  logged_out: "",
  idle: "You were logged out because nothing was done for a while.",
  absolute: "You were logged out because the session had reached its longest duration.",
  displaced: "You were logged out because you have logged in elsewhere too often.",
  service_restarted: "You were logged out because the OLT's service was started again.",
  console_stopped: "You were logged out because the console was stopped.",
};

function end(reason: EndReason | null): void {
  forgetAll();
  timeLeft.set(undefined);
  farewell.set(reason ? reasons[reason] : "");
  current.set(null);
}

export const constantsRequest: ApiRequest = {path: paths.constants, method: "get"};

/** The numbers of ports come first: what is asked for follows from them. Without a session there are none. */
async function learnConstants(): Promise<void> {
  await ask(constantsRequest, {isBackground: true}).then(
    data => remember(constantsRequest, data),
    () => undefined,
  );
}

/** Whether the gateway knows nothing of the session any more; it has ended here then, too. */
async function isOver(): Promise<boolean> {
  const found = await session().catch(() => undefined);
  if (found === undefined || !("ended" in found)) return false;
  end(found.ended);
  return true;
}

/** Goes on with the session that this browser has. */
export async function findSession(): Promise<void> {
  whenSessionEnds(end, isOver);
  try {
    const [found] = await Promise.all([session(), learnConstants()]);
    if ("ended" in found) end(found.ended);
    else current.set(found);
  } catch (error) {
    end(null);
    farewell.set((error as Error).message);
  }
}

export async function begin(user: string, password: string): Promise<void> {
  const begun = await login(user, password);
  await learnConstants();
  farewell.set("");
  current.set(begun);
}

export async function leave(): Promise<void> {
  await logout();
  end("logged_out");
}

/** Carries out a request of this session; one that is over leads to the login page. */
export async function request<T>(what: ApiRequest, options?: AskOptions): Promise<T> {
  try {
    return await ask<T>(what, options);
  } catch (error) {
    if (error instanceof LoggedOut) end(error.reason);
    throw error;
  }
}

export async function stayLoggedIn(): Promise<void> {
  const {idle_left_s, left_s} = await stay();
  timeLeft.set({idle_left_s, left_s, at: Date.now()});
}

/** Whether the user may do what needs this privilege. */
export function useMay(needs: Privilege): boolean {
  return mayAct(useStore(current)?.privilege ?? "nothing", needs);
}
