const thousands = new Intl.NumberFormat("en-GB", {maximumFractionDigits: 0});

export const count = (value: number) => thousands.format(value);

export function dbm(value: number | undefined): string {
  return value === undefined ? "–" : value.toFixed(1).replace("-", "−");
}

/** "1.2 Gbit/s" of a rate in bit/s. */
export function bitRate(bits: number): string {
  return `${scaled(bits, 1000)}bit/s`;
}

export function bytes(value: number): string {
  return `${scaled(value, 1024)}B`;
}

function scaled(value: number, step: number): string {
  const prefixes = step === 1024 ? ["", "Ki", "Mi", "Gi", "Ti"] : ["", "k", "M", "G", "T"];
  let place = 0;
  let rest = value;
  while (Math.abs(rest) >= step && place < prefixes.length - 1) {
    rest /= step;
    place++;
  }
  return `${rest >= 100 || place === 0 ? rest.toFixed(0) : rest.toFixed(1)} ${prefixes[place]}`;
}

/** "2 h 05 min" of seconds. */
export function duration(seconds: number): string {
  const whole = Math.max(0, Math.floor(seconds));
  const days = Math.floor(whole / 86400);
  const hours = Math.floor(whole / 3600) % 24;
  const minutes = Math.floor(whole / 60) % 60;
  const two = (value: number) => String(value).padStart(2, "0");
  if (days > 0) return `${days} d ${two(hours)} h`;
  if (hours > 0) return `${hours} h ${two(minutes)} min`;
  if (minutes > 0) return `${minutes} min ${two(whole % 60)} s`;
  return `${whole} s`;
}

export function clock(time: number): string {
  return new Date(time).toLocaleTimeString("en-GB");
}

/** "1 ONT", "2 ONTs". */
export function counted(number: number, thing: string): string {
  return `${count(number)} ${thing}${number === 1 ? "" : "s"}`;
}
