/** How serial numbers are shown: "SIMUA0030011" or "53494D55A0030011". */
export type SerialFormat = "vendor_hex" | "hex";

/** An ONT's serial number as the API has it: 10 bytes, the last two 0. All 0 means none. */
export type Serial = readonly number[];

export const noSerial: Serial = Array<number>(10).fill(0);

const hex = (bytes: Serial) => bytes.map(byte => byte.toString(16).padStart(2, "0").toUpperCase()).join("");

export function isSet(serial: Serial | undefined): serial is Serial {
  return serial !== undefined && serial.some(byte => byte !== 0);
}

export function serialText(serial: Serial | undefined, format: SerialFormat = "vendor_hex"): string {
  if (!isSet(serial)) return "";
  const vendor = serial.slice(0, 4);
  const isReadable = vendor.every(byte => byte > 0x20 && byte < 0x7f);
  return format === "vendor_hex" && isReadable
    ? String.fromCharCode(...vendor) + hex(serial.slice(4, 8))
    : hex(serial.slice(0, 8));
}

/** Either form of a serial; undefined when the text is none, `noSerial` when it is empty. */
export function parseSerial(text: string): Serial | undefined {
  const trimmed = text.trim();
  if (trimmed === "") return noSerial;
  let digits = trimmed;
  if (/^[\x21-\x7e]{4}[0-9a-f]{8}$/i.test(trimmed)) {
    digits = hex([...trimmed.slice(0, 4)].map(letter => letter.charCodeAt(0))) + trimmed.slice(4);
  }
  if (!/^[0-9a-f]{16}$/i.test(digits)) return undefined;
  return [...digits.matchAll(/../g)].map(pair => parseInt(pair[0], 16)).concat(0, 0);
}
