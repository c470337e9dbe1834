import type {Path} from "olt_api";

/** The paths of the API that the page uses, apart from those of the elements, which the schemas name. */
type Counters = "monitoring.interface.ont.counters.";

export const paths = {
  constants: "monitoring.constants",
  system: "monitoring.system",
  logs: "monitoring.logs",
  frontPorts: "monitoring.interface.front_port.state",
  ponPorts: "monitoring.interface.pon_port.state",
  onts: "monitoring.interface.ont.state",
  counters: "monitoring.interface.ont.counters.",
  leases: "monitoring.ip.dhcp.sessions",
  pppoe: "monitoring.ip.pppoe.sessions",
  groups: "monitoring.ip.igmp.snooping.groups",
  macs: "monitoring.mac",
  commit: "command.commit",
  rollback: "command.rollback",
  save: "command.save",
  factory: "command.default",
  reboot: "command.reboot",
  reconfigureOlt: "command.reconfigure.olt",
  reconfigurePonPort: "command.reconfigure.pon_port",
  reconfigureOnt: "command.reconfigure.ont",
  resetOnt: "command.resettodefault.ont",
  rebootOnt: "command.reboot.ont",
  firmwareUpdate: "command.olt.firmware.update",
  firmwareCurrent: "command.olt.firmware.select_image.current",
  firmwareAlternate: "command.olt.firmware.select_image.alternate",
  obfuscate: "utils.text.obfuscate",
  engineId: "configuration.CommonGCfg.system.snmp.engineID",
} as const satisfies Record<string, Path | Counters>;

/** Elements that pages other than that of the configuration know by themselves; behind "configuration.". */
export const elements = {
  ont: "ZebGCfg.pon.ont",
  service: "ZebGCfg.pon.ont.service",
  ponPort: "ZebGCfg.pon.port_state",
  template: "CommonGCfg.profiles.profiles_ont.ont_template",
  crossConnect: "CommonGCfg.profiles.profiles_ont.cross_connect",
  dba: "CommonGCfg.profiles.profiles_ont.dba",
  serialFormat: "CommonGCfg.system.settings.ont_sn_format",
} as const;

export const configuration = (element: string) => `configuration.${element}`;
