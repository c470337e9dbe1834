#!/usr/bin/python
"""Has an OLT do something, or asks it."""

DOCUMENTATION = r'''
module: olt_command
short_description: Sends commands and requests to a GPON OLT
version_added: 0.1.0
description:
  - Sends requests in their order and returns the answers. The first that is refused ends the task.
  - Reads (paths of C(monitoring), C(configuration) and C(utils)) change nothing; commands do.
author:
  - Developers of api_service !UNKNOWN
extends_documentation_fragment:
  - xpon.olt.session
options:
  commands:
    description: The requests.
    type: list
    elements: dict
    required: true
    suboptions:
      path:
        description: A path of the API reference, such as C(command.reboot.ont) or C(monitoring.system).
        type: str
        required: true
      indices:
        description: An index list for each level, as the path takes them.
        type: list
        elements: str
        default: []
      data:
        description: What the path takes beyond that.
        type: raw
      config:
        description: Which configuration is read, for paths of C(configuration).
        type: str
        choices: [running, candidate]
        default: running
notes:
  - M(xpon.olt.olt_config) is there to change the configuration; this module refuses to.
  - To wait until the OLT is in some state, repeat a read with C(until).
attributes:
  check_mode:
    description: Reads are made, commands are not.
    support: full
  diff_mode:
    support: none
    description: There is nothing to compare.
'''

EXAMPLES = r'''
- name: Restart some ONTs
  xpon.olt.olt_command:
    user: operator
    password_file: /etc/olt/password
    commands:
      - {path: command.reboot.ont, indices: [3/1-8]}

- name: Wait until they work again
  xpon.olt.olt_command:
    user: viewer
    password_file: /etc/olt/password
    commands:
      - {path: monitoring.interface.ont.state, indices: ["3", "1-8"]}
  register: onts
  until: onts.responses[0] | map(attribute='state', default='') | unique == ['OPERATIONAL']
  retries: 30
  delay: 10

- name: The obfuscated form of a secret
  xpon.olt.olt_command:
    user: admin
    password_file: /etc/olt/password
    commands:
      - {path: utils.text.obfuscate, data: {text: "{{ acs_secret }}"}}
  register: obfuscated
  no_log: true
'''

RETURN = r'''
responses:
  description: The data of the answers in the order of the commands; null of those that have none, and of those that check
    mode has left out.
  returned: always
  type: list
  elements: raw
errors:
  description: The reasons of the OLT.
  returned: failure
  type: list
  elements: dict
  contains:
    path: {description: what it is about, type: str, sample: api_service}
    text: {description: the reason, type: str, sample: Access denied}
    index: {description: the reason's number in the API reference, type: int, sample: 12}
'''

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.xpon.olt.plugins.module_utils import olt_api, session

COMMAND = {
    "path": {"type": "str", "required": True},
    "indices": {"type": "list", "elements": "str", "default": []},
    "data": {"type": "raw"},
    "config": {"type": "str", "choices": [olt_api.RUNNING, olt_api.CANDIDATE], "default": olt_api.RUNNING},
}
COMMANDS = "command"
# What the paths take, by their first word.
METHODS = {COMMANDS: "command", "monitoring": "get", "configuration": "get", "utils": "call"}
ENGINE_ID = "configuration.CommonGCfg.system.snmp.engineID"


def method_of(module, path):
    if path == ENGINE_ID:
        return "generate"
    if path.split(".")[0] not in METHODS:
        module.fail_json(msg=f"{path!r} begins with none of {', '.join(METHODS)}", errors=[])
    return METHODS[path.split(".")[0]]


def request_of(command, method):
    more = {} if command["data"] is None else {"data": command["data"]}
    if method == "get" and command["path"].startswith("configuration.") or command["path"] == "utils.ont.find":
        more["config_type"] = command["config"]
    return {"path": command["path"], "method": method, "indices": command["indices"], **more}


def main():
    module = AnsibleModule(
        argument_spec={**session.OPTIONS,
                       "commands": {"type": "list", "elements": "dict", "required": True, "options": COMMAND}},
        supports_check_mode=True, **session.RULES)
    requests = [request_of(command, method_of(module, command["path"])) for command in module.params["commands"]]
    responses = []
    is_changed = False
    with session.session(module) as client:
        for position, request in enumerate(requests):
            is_command = request["method"] == COMMANDS
            try:
                responses.append(None if is_command and module.check_mode else client.request(**request))
            except olt_api.Refused as refusal:
                module.fail_json(msg=f"commands[{position}], {request['path']}: {session.text_of(refusal)}",
                                 errors=session.errors_of(refusal), responses=responses, changed=is_changed)
            is_changed = is_changed or is_command
        module.exit_json(changed=is_changed, responses=responses)


if __name__ == "__main__":
    main()
