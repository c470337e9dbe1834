import type {Constants} from "olt_api";

/** An element of the configuration as the page presents it. */
export interface Element {
  path: string;
  title: string;
  /** One record of it. */
  one: string;
  /** How many records each index has; none for a single record. */
  sizes: (device: Constants) => readonly number[];
  /** A record counts when this key is not empty; the others are not listed. */
  definedBy?: string;
  /** Columns of the list. */
  columns?: readonly string[];
  /** Reached from elsewhere, not from the list of elements. */
  isHidden?: boolean;
}

const single = () => [];
const profile = "CommonGCfg.profiles.profiles_ont.";
const ontsPerPort = 256;
const servicesPerOnt = 8;

export const sections: readonly {title: string; elements: readonly Element[]}[] = [
  {
    title: "PON",
    elements: [
      {
        path: "ZebGCfg.pon.ont",
        title: "ONTs",
        one: "ONT",
        sizes: ({PON_PORT_COUNT}) => [PON_PORT_COUNT, ontsPerPort],
        definedBy: "serial",
        columns: ["serial", "description", "ont_template", "enabled"],
      },
      {
        path: "ZebGCfg.pon.ont.service",
        title: "ONT services",
        one: "Service",
        sizes: ({PON_PORT_COUNT}) => [PON_PORT_COUNT, ontsPerPort, servicesPerOnt],
        isHidden: true,
      },
      {
        path: "ZebGCfg.pon.port_state",
        title: "PON ports",
        one: "PON port",
        sizes: ({PON_PORT_COUNT}) => [PON_PORT_COUNT],
        columns: ["enabled", "description", "odn_class", "reach_max_km", "ont_limit", "onu_auth"],
      },
    ],
  },
  {
    title: "Profiles",
    elements: [
      {
        path: `${profile}ont_template`,
        title: "ONT templates",
        one: "ONT template",
        sizes: ({ONT_TEMPLATE_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "description", "ports_profile", "management_profile", "shaping_profile"],
      },
      {
        path: `${profile}cross_connect`,
        title: "Cross-connect",
        one: "Cross-connect profile",
        sizes: ({PROFILE_CROSS_CONNECT_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "service_type", "termination", "vlan_model", "s_vid", "c_vid"],
      },
      {
        path: `${profile}dba`,
        title: "Bandwidth (DBA)",
        one: "DBA profile",
        sizes: ({PROFILE_DBA_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "tcont_type", "fixed_kbps", "assured_kbps", "maximum_kbps"],
      },
      {
        path: `${profile}ports`,
        title: "User ports",
        one: "Ports profile",
        sizes: ({PROFILE_PORTS_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "veip_enabled", "igmp_mode", "max_groups", "codec"],
      },
      {
        path: `${profile}management`,
        title: "ONT management",
        one: "Management profile",
        sizes: ({PROFILE_MANAGEMENT_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "mode", "mib_audit_s", "pm_collection"],
      },
      {
        path: `${profile}shaping`,
        title: "Shaping",
        one: "Shaping profile",
        sizes: ({PROFILE_SHAPING_COUNT: most}) => [most],
        definedBy: "name",
        columns: ["name", "downstream_kbps", "upstream_kbps"],
      },
    ],
  },
  {
    title: "Network",
    elements: [
      {
        path: "ZebGCfg.switch_config.front_port",
        title: "Front ports",
        one: "Front port",
        sizes: ({FRONT_PORT_COUNT}) => [FRONT_PORT_COUNT],
        columns: ["enabled", "description", "speed", "max_frame_size", "pvid", "tagged_vlans"],
      },
      {
        path: "ZebGCfg.switch_config.port_channel",
        title: "Port channels",
        one: "Port channel",
        sizes: ({PORT_CHANNEL_COUNT: most}) => [most],
        columns: ["enabled", "description", "members", "mode", "min_links"],
      },
      {path: "CommonGCfg.management", title: "In-band management", one: "In-band management", sizes: single},
      {path: "CommonGCfg.system.oob", title: "Out-of-band port", one: "Out-of-band port", sizes: single},
    ],
  },
  {
    title: "System",
    elements: [
      {path: "CommonGCfg.hostname", title: "Host name", one: "Host name", sizes: single},
      {path: "CommonGCfg.system.ntp", title: "Time (NTP)", one: "Time (NTP)", sizes: single},
      {path: "CommonGCfg.system.snmp", title: "SNMP", one: "SNMP", sizes: single},
      {
        path: "CommonGCfg.system.settings.ont_sn_format",
        title: "Serial numbers",
        one: "Serial numbers",
        sizes: single,
      },
      {path: "CommonGCfg.system.fan_speed", title: "Fans", one: "Fans", sizes: single},
      {path: "CommonGCfg.system.reset_status", title: "Reset button", one: "Reset button", sizes: single},
    ],
  },
];

export const allElements: readonly Element[] = sections.flatMap(({elements}) => elements);

export function elementOf(path: string): Element | undefined {
  return allElements.find(element => element.path === path);
}

/** How many indices name one record. */
export function depthOf(element: Element): number {
  return element.sizes({} as Constants).length;
}

/** "ONT 3/17", "Front port 4", "SNMP". */
export function nameOf(element: Element, indices: readonly number[]): string {
  return indices.length === 0
    ? element.one
    : element.isHidden
      ? `ONT ${indices[0]}/${indices[1]}, service ${indices[2]}`
      : `${element.one} ${indices.join("/")}`;
}

/** Element and indices of "configuration.ZebGCfg.pon.ont.3.17"; undefined for another path. */
export function recordOf(path: string): {element: Element; indices: number[]} | undefined {
  const match = /^configuration\.(.*?)((?:\.\d+)*)$/.exec(path);
  const element = match && elementOf(match[1]!);
  return element
    ? {
        element,
        indices: match[2]!
          .split(".")
          .filter(part => part !== "")
          .map(Number),
      }
    : undefined;
}

export function linkTo(element: Element, indices: readonly number[]): string {
  return `#/configuration/${[element.path, ...indices].join("/")}`;
}
