/** Limits of the light that an OLT receives at 1244 Mbit/s, in dBm, by ODN class [G.984.2 and its amendments 1 and 2]. */
export const receiverLimits: Readonly<Record<string, {sensitivity: number; overload: number}>> = {
  a: {sensitivity: -24, overload: -3},
  b: {sensitivity: -28, overload: -7},
  b_plus: {sensitivity: -28, overload: -8},
  c: {sensitivity: -29, overload: -8},
  c_plus: {sensitivity: -32, overload: -12},
};

/** Less room than this to the sensitivity, in dB, is worth a look: dirt, ageing and repairs will use it up. */
const safeMargin = 3;

export type Level = "good" | "warn" | "bad";

export interface Reception {
  level: Level;
  /** Room to the receiver's sensitivity, in dB; negative below it. */
  margin: number;
  text: string;
}

export function limitsOf(odnClass: string | undefined) {
  return receiverLimits[odnClass ?? "b_plus"] ?? receiverLimits["b_plus"]!;
}

export function reception(rssi: number, odnClass: string | undefined): Reception {
  const {sensitivity, overload} = limitsOf(odnClass);
  const margin = rssi - sensitivity;
  if (margin < 0) return {level: "bad", margin, text: "below the receiver's sensitivity"};
  if (rssi > overload) return {level: "bad", margin, text: "above the receiver's overload"};
  if (margin < safeMargin) return {level: "warn", margin, text: "little margin"};
  return {level: "good", margin, text: "within limits"};
}
