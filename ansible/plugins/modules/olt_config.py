#!/usr/bin/python
"""Brings the configuration of an OLT to what a playbook says."""

DOCUMENTATION = r'''
module: olt_config
short_description: Configures a GPON OLT
version_added: 0.1.0
description:
  - Reads the records that a playbook names, compares them with what it says, sends those that differ to the candidate
    configuration and puts them into force with one commit.
  - When a record or the commit is refused, all edits are taken back; nothing half-done stays, neither in what runs nor in
    the candidate. So they are when the playbook is interrupted.
author:
  - Developers of api_service !UNKNOWN
extends_documentation_fragment:
  - xpon.olt.session
options:
  config:
    description:
      - The records. Of items that name the same record a later one comes on top of those before it, so that a range can be
        followed by exceptions.
    type: list
    elements: dict
    required: true
    suboptions:
      element:
        description: The element's path in the data model, such as C(ZebGCfg.pon.ont), with or without C(configuration.)
        type: str
        required: true
      indices:
        description:
          - Which records of an element that has several, as numbers and ranges from 1, levels divided by C(/). C(1-4/1-8,12)
            are the ONTs 1 to 8 and 12 of the PON ports 1 to 4.
        type: str
      record:
        description:
          - Keys and values as in the data model. A C(serial) may be written as C(SIMUA0010001).
          - Of arrays with a fixed number of items the positions that are given count; C({}) leaves one as it is. Lists of
            any length are given whole.
          - Secrets are given in their obfuscated form, which C(utils.text.obfuscate) makes.
        type: dict
      state:
        description:
          - C(merged) changes the keys that are given and leaves the others alone.
          - C(replaced) makes the record what is given; other keys get their defaults.
          - C(absent) gives all keys their defaults; an ONT is deleted with its services.
        type: str
        choices: [merged, replaced, absent]
        default: merged
  save:
    description:
      - Whether what runs is kept for the next start of the OLT. With C(changed) only when this task has changed
        something, with C(always) in any case, also what others have changed.
    type: str
    choices: [never, changed, always]
    default: never
  pending:
    description:
      - The candidate is one for all users, and a commit takes all of it. With C(refuse) the task fails when somebody else
        has edits in it that are not committed; with C(discard), which needs an administrator, they are dropped first.
      - Looked at only when there is something to change.
    type: str
    choices: [refuse, discard]
    default: refuse
attributes:
  check_mode:
    description: The OLT looks at values, too, but the checks of a commit across records are not made.
    support: partial
  diff_mode:
    description: Shows the values that differ. Secrets are hidden.
    support: full
'''

EXAMPLES = r'''
- name: Time servers and the name of the OLT
  xpon.olt.olt_config:
    user: admin
    password_file: /etc/olt/password
    config:
      - element: CommonGCfg.hostname
        record: {hostname: "{{ inventory_hostname_short }}"}
      - element: CommonGCfg.system.ntp
        record:
          enabled: true
          servers: [{address: ntp1.example.net, prefer: true}, {address: ntp2.example.net}]
    save: changed

- name: Eight ONTs with the same template, one of them with more bandwidth
  xpon.olt.olt_config:
    user: admin
    password_file: /etc/olt/password
    config:
      - element: ZebGCfg.pon.ont
        indices: 3/1-8
        record: {ont_template: 2}
      - element: ZebGCfg.pon.ont
        indices: 3/1
        record: {serial: SIMUA0030001, description: House 7}
      - element: ZebGCfg.pon.ont.service
        indices: 3/1/1
        record: {downstream_kbps: 300000, upstream_kbps: 100000}

- name: These subscribers have moved out
  xpon.olt.olt_config:
    user: operator
    password_file: /etc/olt/password
    config:
      - {element: ZebGCfg.pon.ont, indices: "3/9-16", state: absent}
'''

RETURN = r'''
changes:
  description: What differs, alike records together, by key path. Secrets are hidden.
  returned: success
  type: list
  elements: dict
  contains:
    element: {description: the element, type: str, sample: ZebGCfg.pon.ont}
    indices: {description: its records, type: str, sample: 3/1-8}
    before: {description: values that ran, type: dict, sample: {ont_template: 0}}
    after: {description: values that are wanted, type: dict, sample: {ont_template: 2}}
saved:
  description: Whether what runs was kept for the next start.
  returned: success
  type: bool
element:
  description: The element at which the OLT, or the comparison, stopped.
  returned: when a record is at fault
  type: str
indices:
  description: Its records.
  returned: when a record is at fault
  type: str
errors:
  description: The reasons of the OLT.
  returned: failure
  type: list
  elements: dict
  contains:
    path: {description: what it is about, type: str, sample: servers.0.version}
    text: {description: the reason, type: str, sample: Value 9 is out of range 3 to 4}
    index: {description: the reason's number in the API reference, type: int, sample: 22}
rolled_back:
  description: Whether the edits of this task were taken back.
  returned: failure, when there were edits
  type: bool
'''

import signal

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.xpon.olt.plugins.module_utils import candidate, olt_api, records, session

CONFIG = {
    "element": {"type": "str", "required": True},
    "indices": {"type": "str"},
    "record": {"type": "dict"},
    "state": {"type": "str", "choices": [candidate.MERGED, candidate.REPLACED, candidate.ABSENT],
              "default": candidate.MERGED},
}


def fail(module, trouble, **more):
    place = {key: value for key, value in (("element", trouble.element), ("indices", trouble.indices)) if value}
    module.fail_json(msg=more.pop("msg", str(trouble)), errors=session.errors_of(trouble), **place, **more)


def wishes_of(module):
    wishes = []
    for position, item in enumerate(module.params["config"]):
        module.no_log_values.update(records.secrets_of(item["record"] or {}))
        try:
            wishes.append(candidate.Wish.read(item))
        except ValueError as error:
            module.fail_json(msg=f"config[{position}]: {error}", errors=[])
    return wishes


def clear_candidate(module, client):
    """Nobody else's edits may go into force with ours."""
    if module.params["pending"] == "discard" and not module.check_mode:
        client.rollback()
    elif module.params["pending"] == "refuse":
        name, lists = candidate.foreign_edits(client)
        if name:
            raise candidate.Trouble(f"the candidate holds edits of somebody else, {name} {lists}: commit them, roll them back, "
                                    "or have this task drop them with pending=discard", element=name, indices=lists)


def check(module, edit):
    try:
        edit.check()
    except candidate.Trouble as trouble:
        if any(error.index == olt_api.ACCESS_DENIED for error in trouble.errors):
            module.warn(f"{module.params['user']} may not write, so that the OLT has not looked at the values ({trouble})")
        else:
            raise


def end_orderly():
    """Somebody interrupts the playbook, or its connection to this machine ends: that counts as an answer that was lost,
    so that the edits are taken back."""
    endings = [number for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM)
               if signal.getsignal(number) != signal.SIG_IGN]  # as nohup has it

    def lose_answer(number, _):
        for ending in endings:
            signal.signal(ending, signal.SIG_IGN)
        raise olt_api.TransportError(f"ended by {signal.Signals(number).name}")

    for ending in endings:
        signal.signal(ending, lose_answer)


def carry_out(module, edit, deleted):
    end_orderly()
    try:
        edit.write(deleted)
        if edit.changes:
            edit.commit()
    except (candidate.Trouble, olt_api.ApiError) as failure:
        trouble = failure if isinstance(failure, candidate.Trouble) else candidate.Trouble(str(failure))
        try:
            if isinstance(failure, olt_api.ApiError):
                edit.reopen(edit.client)
            edit.take_back()
        except (candidate.Trouble, olt_api.ApiError, OSError) as obstacle:
            fail(module, trouble, rolled_back=False,
                 msg=f"{trouble}. The edits of this task are not in force, but could not be taken back from the candidate: "
                     f"{obstacle}")
        fail(module, trouble, rolled_back=True,
             msg=f"{trouble}. All edits of this task were taken back; the OLT runs as before")


def save(module, client, is_changed):
    if module.check_mode or not (module.params["save"] == "always" or module.params["save"] == "changed" and is_changed):
        return False
    try:
        client.save()
    except olt_api.ApiError as error:
        module.fail_json(msg=f"committed and in force, but not saved for the next start: {error}", changed=is_changed,
                         errors=[])
    return True


def main():
    module = AnsibleModule(
        argument_spec={
            **session.OPTIONS,
            "config": {"type": "list", "elements": "dict", "required": True, "options": CONFIG},
            "save": {"type": "str", "choices": ["never", "changed", "always"], "default": "never"},
            "pending": {"type": "str", "choices": ["refuse", "discard"], "default": "refuse"},
        },
        supports_check_mode=True, **session.RULES)
    wishes = wishes_of(module)
    with session.session(module) as client:
        try:
            changes, deleted = candidate.changes_for(client, wishes)
            edit = candidate.Edit(client, changes, lambda client: session.reopen(client, module.params))
            if changes:
                clear_candidate(module, client)
            if module.check_mode:
                check(module, edit)
        except candidate.Trouble as trouble:
            fail(module, trouble)
        if changes and not module.check_mode:
            carry_out(module, edit, deleted)
        report = candidate.report_of(edit.changes)
        diff = {"diff": candidate.diff_of(report)} if module._diff else {}
        module.exit_json(changed=bool(report), changes=report, saved=save(module, client, bool(report)), **diff)


if __name__ == "__main__":
    main()
