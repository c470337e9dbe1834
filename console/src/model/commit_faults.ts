/** Which field of the record at fault a refused commit is about: for each text, the keys in question, the likeliest first. */
const fields: readonly (readonly [text: RegExp, keys: readonly string[]])[] = [
  [/^No management interface is enabled/, ["enabled"]],
  [/^Management networks overlap/, ["ip_address"]],
  [/^VLAN \d+ is the management VLAN/, ["s_vid", "vlan_id", "multicast_vid"]],
  [/^VLAN \d+ is on no enabled front port/, ["s_vid", "vlan_id", "multicast_vid", "tagged_vlans"]],
  [/^Front port \d+ is already in port channel/, ["members"]],
  [/^Port channel has \d+ members/, ["min_links"]],
  [/^Front port \d+ does not exist/, ["members"]],
  [/^Front ports \d+ and \d+ differ/, ["members"]],
  [/^Undefined template/, ["ont_template"]],
  [/^Undefined cross.connect profile/i, ["cross_connect", "services"]],
  [/^Undefined DBA profile/i, ["dba", "services"]],
  [/^Undefined ports profile/i, ["ports_profile"]],
  [/^Undefined management profile/i, ["management_profile"]],
  [/^Undefined shaping profile/i, ["shaping_profile"]],
  [/^ONT serial is already used/, ["serial"]],
  [/^VLAN \d+ is used both/, ["s_vid", "vlan_model", "multicast_vid"]],
  [/^One-to-one service has no C-VLAN/, ["c_vid"]],
  [/^VLAN pair/, ["c_vid", "s_vid"]],
  [/^Services \d+ and \d+ clash/, ["services", "cross_connect", "ont_template"]],
  [/^Services \d+ and \d+ use the same VLANs/, ["s_vid", "services", "ont_template"]],
  [/^Guaranteed upstream bandwidth/, ["ont_limit", "dba", "ont_template"]],
  [/^PON port has \d+ ONTs/, ["ont_limit"]],
  [/^ONT has no password/, ["password"]],
  [/^Voice service without/, ["ports_profile", "cross_connect"]],
  [/^Telephone line/, ["lines"]],
  [/^Management service without/, ["management_profile"]],
];

/** The key, of those that the record has. */
export function fieldAtFault(text: string, keys: readonly string[]): string | undefined {
  const bare = text.replace(/^Commit failed: /, "");
  return fields.find(([pattern]) => pattern.test(bare))?.[1].find(key => keys.includes(key));
}
