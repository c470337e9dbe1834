"""Processes that hold what the daemon needs, too, and are then stopped or killed."""

import ctypes
import fcntl
import os
import select
import signal

from .olt import require

READ_ONLY = 0x20000
PR_SET_PDEATHSIG = 1


class Holder:
    """A fork of this program, which has one thread; gone with one signal, and also when this program ends early."""

    def __init__(self):
        here, there = os.pipe()
        program = os.getpid()
        self.pid = os.fork()
        if self.pid == 0:
            try:
                ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)
                os.close(here)
                if os.getppid() == program and self.take():
                    os.write(there, b"x")
                    signal.pause()
            finally:
                os._exit(1)
        os.close(there)
        ready = select.select([here], [], [], 30)[0] and os.read(here, 1) == b"x"
        os.close(here)
        require(ready, f"{type(self).__name__}: another program cannot have it any more")

    def stop(self):
        os.kill(self.pid, signal.SIGSTOP)
        os.waitpid(self.pid, os.WUNTRACED)

    def kill(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)


class LmdbUser(Holder):
    """Uses the database's file as any program with LMDB can: holds a transaction."""

    def __init__(self, folder, flags):
        self.folder = str(folder).encode()
        self.flags = flags
        super().__init__()

    def take(self):
        lmdb = ctypes.CDLL("liblmdb.so.0")
        environment = ctypes.c_void_p()
        transaction = ctypes.c_void_p()
        lmdb.mdb_env_create(ctypes.byref(environment))
        lmdb.mdb_env_set_mapsize(environment, ctypes.c_size_t(1 << 30))
        opened = lmdb.mdb_env_open(environment, self.folder, 0, 0o600)
        return opened == 0 and lmdb.mdb_txn_begin(environment, None, self.flags, ctypes.byref(transaction)) == 0


class FolderLock(Holder):
    """Holds the lock of a folder's files."""

    def __init__(self, folder):
        self.file = folder / ".lock"
        super().__init__()

    def take(self):
        self.descriptor = os.open(self.file, os.O_RDWR | os.O_CREAT, 0o600)
        fcntl.flock(self.descriptor, fcntl.LOCK_EX)
        return True
