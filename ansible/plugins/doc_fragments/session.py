"""The options that all modules of the collection take."""

from __future__ import annotations


class ModuleDocFragment:
    DOCUMENTATION = r'''
options:
  user:
    description: Who logs in to the OLT.
    type: str
    required: true
  password:
    description: The password. One of I(password) and I(password_file) is needed.
    type: str
  password_file:
    description:
      - A file on the managed host that only its owner can read. Its first line is the password.
    type: path
  host:
    description: Where the service listens, seen from the managed host.
    type: str
    default: 127.0.0.1
  port:
    description: The port on which it listens.
    type: int
    default: 9999
  timeout:
    description: How many seconds one answer may take.
    type: float
    default: 30.0
requirements:
  - Python 3.11 on the managed host
notes:
  - The service listens on the loopback address of the OLT's controller. Modules run there, through SSH, and not on the
    machine of the playbook.
  - Set the options once for all modules with C(module_defaults) and the group C(group/xpon.olt.olt).
'''
