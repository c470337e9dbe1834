export interface Lease {
  pon_port_id: number;
  ont_id: number;
  mac: string;
  service_id: number;
  gem_port: number;
  outer_vid: number;
  ip: string;
  life_time_msec: number;
  ont_serial: number[];
}

export interface PppoeSession {
  pon_port_id: number;
  ont_id: number;
  gem_port: number;
  /** 0 while the network blocks the client. */
  session_id: number;
  ont_serial: number[];
  duration_sec: number;
  unblock_rest_sec: number;
  client_mac: string;
}

export interface MulticastGroup {
  group_address: string;
  is_in_deletion_queue: 0 | 1;
  filter_mode: string;
  vlan: number;
  ip_sources: {ip_address: string; filter_mode: string}[];
  ports: {port: string; is_static: 0 | 1; expires_sec: number}[];
}

export interface MacEntry {
  mac: string;
  port: string;
  svid: number;
  cvid: number;
  uvid: number;
  /** PON port/ONT, or empty. */
  ont: string;
  gem: number;
  type: string;
}
