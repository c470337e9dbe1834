import type {Privilege} from "olt_api";

const ranks: readonly Privilege[] = ["nothing", "viewer", "operator", "administrator"];

export function mayAct(has: Privilege, needs: Privilege): boolean {
  return ranks.indexOf(has) >= ranks.indexOf(needs);
}
