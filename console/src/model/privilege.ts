export type Privilege = "nothing" | "viewer" | "operator" | "administrator";

const ranks: readonly Privilege[] = ["nothing", "viewer", "operator", "administrator"];

export function mayAct(has: Privilege, needs: Privilege): boolean {
  return ranks.indexOf(has) >= ranks.indexOf(needs);
}
