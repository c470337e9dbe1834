/** "1-4,7" of numbers in any order. */
export function rangeText(numbers: Iterable<number>): string {
  const sorted = [...new Set(numbers)].sort((a, b) => a - b);
  const parts: string[] = [];
  for (let at = 0; at < sorted.length;) {
    let end = at;
    while (end + 1 < sorted.length && sorted[end + 1] === sorted[end]! + 1) end++;
    parts.push(end === at ? `${sorted[at]}` : `${sorted[at]}-${sorted[end]}`);
    at = end + 1;
  }
  return parts.join(",");
}

/** The numbers of "1-4,7"; undefined when the text is no such list. */
export function parseRange(text: string, most = 65536): number[] | undefined {
  const numbers: number[] = [];
  for (const part of text
    .split(",")
    .map(piece => piece.trim())
    .filter(piece => piece !== "")) {
    const match = /^(\d+)(?:\s*-\s*(\d+))?$/.exec(part);
    if (!match) return undefined;
    const first = Number(match[1]);
    const last = Number(match[2] ?? match[1]);
    if (last < first || last - first > most) return undefined;
    for (let number = first; number <= last; number++) numbers.push(number);
  }
  return numbers;
}

/** Indices of the form PORTS/ONTS, one text for each PON port. */
export function ontIndices(onts: Iterable<{port: number; ont: number}>): string[] {
  const byPort = new Map<number, number[]>();
  for (const {port, ont} of onts) byPort.set(port, [...(byPort.get(port) ?? []), ont]);
  return [...byPort].sort(([a], [b]) => a - b).map(([port, ids]) => `${port}/${rangeText(ids)}`);
}
