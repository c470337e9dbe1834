#!/usr/bin/python
"""Reads the state and the configuration of an OLT."""

DOCUMENTATION = r'''
module: olt_facts
short_description: Reads state and configuration of a GPON OLT
version_added: 0.1.0
description:
  - Returns what the OLT is, the state of its ports, ONTs and subscribers, and its configuration.
author:
  - Developers of api_service !UNKNOWN
extends_documentation_fragment:
  - xpon.olt.session
options:
  gather_subset:
    description:
      - Which facts. C(onts), C(subscribers) and C(config) of a full OLT are large; they are read in parts, so that others do
        not wait for them.
    type: list
    elements: str
    choices: [system, ports, onts, subscribers, config]
    default: [system, ports]
  elements:
    description: With C(config), only these elements, by their paths in the data model.
    type: list
    elements: str
    default: []
attributes:
  check_mode:
    support: full
    description: Nothing is changed.
  diff_mode:
    support: none
    description: Nothing is changed.
  facts:
    support: full
    description: The facts begin with C(olt_).
'''

EXAMPLES = r'''
- name: What there is
  xpon.olt.olt_facts:
    user: viewer
    password_file: /etc/olt/password
    gather_subset: [system, onts]

- name: ONTs that nobody has configured
  ansible.builtin.debug:
    msg: "{{ olt_onts | selectattr('state', 'defined') | selectattr('state', 'eq', 'UNACTIVATED') | map(attribute='serial') }}"

- name: All profiles of one OLT, for another one
  xpon.olt.olt_facts:
    user: viewer
    password_file: /etc/olt/password
    gather_subset: [config]
    elements: [CommonGCfg.profiles.profiles_ont.cross_connect, CommonGCfg.profiles.profiles_ont.dba]
  delegate_to: olt-1

- name: Written there as they are
  xpon.olt.olt_config:
    user: admin
    password_file: /etc/olt/password
    config: "{{ olt_config }}"
'''

RETURN = r'''
ansible_facts:
  description: The facts, in the form of the API unless said otherwise.
  returned: success
  type: dict
  contains:
    olt_system:
      description: Board, firmware, load, memory, fans, temperatures and supplies; with subset C(system).
      type: dict
      returned: with its subset
    olt_constants:
      description: How many ports, profiles and templates there are; with subset C(system).
      type: dict
      returned: with its subset
    olt_front_ports:
      description: State of the front ports; with subset C(ports).
      type: list
      elements: dict
      returned: with its subset
    olt_pon_ports:
      description: State of the PON ports; with subset C(ports).
      type: list
      elements: dict
      returned: with its subset
    olt_onts:
      description: State of the ONTs, also of those that are not configured, serials as text; with subset C(onts).
      type: list
      elements: dict
      returned: with its subset
    olt_leases:
      description: DHCP leases; with subset C(subscribers).
      type: list
      elements: dict
      returned: with its subset
    olt_sessions:
      description: PPPoE sessions; with subset C(subscribers).
      type: list
      elements: dict
      returned: with its subset
    olt_groups:
      description: Multicast groups; with subset C(subscribers).
      type: list
      elements: dict
      returned: with its subset
    olt_macs:
      description: Learned MAC addresses; with subset C(subscribers).
      type: list
      elements: dict
      returned: with its subset
    olt_config:
      description:
        - What runs, as whole records in the form that M(xpon.olt.olt_config) takes, equal ones once; with subset C(config).
        - Elements that can only be read are left out, and so are records that have all their defaults.
      type: list
      elements: dict
      returned: with its subset
'''

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.xpon.olt.plugins.module_utils import candidate, elements, records, session


def system(client):
    return {"olt_system": client.get("monitoring.system"), "olt_constants": client.get("monitoring.constants")}


def ports(client):
    constants = client.get("monitoring.constants")
    kinds = (("olt_front_ports", "front_port", "FRONT_PORT_COUNT"), ("olt_pon_ports", "pon_port", "PON_PORT_COUNT"))
    return {fact: client.get(f"monitoring.interface.{kind}.state", f"1-{constants[count]}") for fact, kind, count in kinds}


def onts(client):
    found = []
    for port in range(1, client.get("monitoring.constants")["PON_PORT_COUNT"] + 1):
        # Those that are not configured come with every port.
        found += [records.shown(ont) for ont in
                  client.get("monitoring.interface.ont.state", port, elements.all_places(elements.ONT, {})[1])
                  if ont.get("cfg_port", ont.get("port")) == port]
    return {"olt_onts": found}


def subscribers(client):
    return {"olt_leases": client.get("monitoring.ip.dhcp.sessions")["sessions"],
            "olt_sessions": client.get("monitoring.ip.pppoe.sessions")["sessions"],
            "olt_groups": client.get("monitoring.ip.igmp.snooping.groups")["igmp_groups"],
            "olt_macs": client.get("monitoring.mac")}


SUBSETS = {"system": system, "ports": ports, "onts": onts, "subscribers": subscribers}


def main():
    module = AnsibleModule(
        argument_spec={
            **session.OPTIONS,
            "gather_subset": {"type": "list", "elements": "str", "choices": [*SUBSETS, "config"],
                              "default": ["system", "ports"]},
            "elements": {"type": "list", "elements": "str", "default": []},
        },
        supports_check_mode=True, **session.RULES)
    try:
        names = [elements.named(name) for name in module.params["elements"]]
    except ValueError as error:
        module.fail_json(msg=str(error), errors=[])
    facts = {}
    with session.session(module) as client:
        for subset in module.params["gather_subset"]:
            facts.update({"olt_config": candidate.export(client, names)} if subset == "config" else SUBSETS[subset](client))
        module.exit_json(ansible_facts=facts)


if __name__ == "__main__":
    main()
