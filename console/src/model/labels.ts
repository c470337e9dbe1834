/** Units that keys end with, as they are shown behind a field. */
const units: readonly (readonly [suffix: string, unit: string])[] = [
  ["_kbps", "kbit/s"],
  ["_pps", "packets/s"],
  ["_km", "km"],
  ["_percent", "%"],
  ["_bytes", "bytes"],
  ["_min", "min"],
  ["_temp_c", "°C"],
  ["_s", "s"],
];

const spelled: Readonly<Record<string, string>> = {
  vlan: "VLAN",
  vlans: "VLANs",
  id: "ID",
  ip: "IP",
  dns: "DNS",
  ssh: "SSH",
  snmp: "SNMP",
  lldp: "LLDP",
  pvid: "PVID",
  odn: "ODN",
  ont: "ONT",
  onu: "ONU",
  fec: "FEC",
  dba: "DBA",
  igmp: "IGMP",
  dhcp: "DHCP",
  pppoe: "PPPoE",
  sip: "SIP",
  acs: "ACS",
  url: "URL",
  mac: "MAC",
  tpid: "TPID",
  vid: "VID",
  utc: "UTC",
  mib: "MIB",
  pm: "PM",
  wan: "WAN",
  lan: "LAN",
  veip: "VEIP",
  rf: "RF",
  pots: "Telephone ports",
  lacp: "LACP",
  uni: "UNI",
  eth: "Ethernet ports",
  tcont: "T-CONT",
  v2c: "v2c",
  v3: "v3",
  sys: "System",
  priv: "Privacy",
  auth: "Authentication",
};

/** "Max frame size" of "max_frame_size"; units stand behind the field. */
export function labelOf(key: string): string {
  const unit = unitOf(key) && units.find(([suffix]) => key.endsWith(suffix));
  // The 2 letters in front of _c of a temperature are its name, not its unit.
  const bare = unit ? key.slice(0, -unit[0].length) + (unit[0] === "_temp_c" ? "_temperature" : "") : key;
  if (bare === "s_vid") return "S-VLAN";
  if (bare === "c_vid") return "C-VLAN";
  if (bare === "s_tpid") return "S-VLAN TPID";
  const words = bare
    .split("_")
    .map(word => spelled[word] ?? word)
    .join(" ");
  return words.charAt(0).toUpperCase() + words.slice(1);
}

export function unitOf(key: string): string {
  if (key === "utc_offset_min" || !/(^|_)min$/.test(key))
    return units.find(([suffix]) => key.endsWith(suffix))?.[1] ?? "";
  return "";
}
