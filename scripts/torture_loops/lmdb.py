"""A process that uses the database's file as any program with LMDB can, and is then stopped or killed."""

import ctypes
import os
import select
import signal

from .olt import require

READ_ONLY = 0x20000


class LmdbUser:
    """Holds a transaction of the database; forked, so that it is gone with one signal."""

    def __init__(self, folder, flags):
        here, there = os.pipe()
        self.pid = os.fork()
        if self.pid == 0:
            os.close(here)
            self._hold(str(folder).encode(), flags, there)
        os.close(there)
        ready = select.select([here], [], [], 30)[0] and os.read(here, 1) == b"x"
        os.close(here)
        require(ready, "another program cannot use the database any more")

    @staticmethod
    def _hold(folder, flags, report):
        try:
            lmdb = ctypes.CDLL("liblmdb.so.0")
            environment = ctypes.c_void_p()
            transaction = ctypes.c_void_p()
            lmdb.mdb_env_create(ctypes.byref(environment))
            lmdb.mdb_env_set_mapsize(environment, ctypes.c_size_t(1 << 30))
            opened = lmdb.mdb_env_open(environment, folder, 0, 0o600)
            begun = lmdb.mdb_txn_begin(environment, None, flags, ctypes.byref(transaction))
            if opened == 0 and begun == 0:
                os.write(report, b"x")
                signal.pause()
        finally:
            os._exit(1)

    def stop(self):
        os.kill(self.pid, signal.SIGSTOP)
        os.waitpid(self.pid, os.WUNTRACED)

    def kill(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
