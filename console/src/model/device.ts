/** Answers about the device itself. */

export interface Constants {
  DEVICE_NAME_SHORT: string;
  PON_PORT_COUNT: number;
  FRONT_PORT_COUNT: number;
}

type Flag = 0 | 1;

export interface System {
  ram: {free: number; total: number};
  disk: {free: number; total: number};
  avg_load: {"1m": number; "5m": number; "15m": number};
  fans: {is_fault: Flag; is_present: Flag; rate_rps: number}[];
  temp_sensors: {id: string; value: number}[];
  power_sources: {is_present: Flag; is_power_good: Flag; is_220v_present: Flag; is_read_info: Flag; model?: string; type?: string; serial?: string}[];
  device_info: {
    hostname: string; uptime: string; active_fw: string; inactive_fw: string; next_boot_fw: string;
    fpga_version: number; pld_version: number;
  };
  factory_info: {device_type: string; board_version: string; serial_number: string; mac_address: string};
}

interface Port {
  port: number;
  sfp_condition: string;
  sfp?: {vendor: string; part_number: string; revision: string; media?: string};
}

export interface FrontPort extends Port {
  status: "UP" | "DOWN" | "SHUTDOWN";
  speed: string;
  eddi?: {temperature_c: number; voltage_v: number; tx_bias_current_ma: number; tx_power_mw: number};
}

export interface PonPort extends Port {
  state: "DISABLED" | "NO_MODULE" | "STARTING" | "ACTIVE" | "FAULT" | "UNKNOWN";
  pon_type: string;
  ont_count: number;
  eddi?: {temperature_c: number; voltage_v: number; tx_bias_current_ma: number; tx_power_dbm: number};
}
