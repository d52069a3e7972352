"""Failing calls of the system: each open, read, write, rename, fsync, close, mmap, thread start (and what else makes
files) of a small run of every command fails once, and from then on. The run must end with one sentence and the old
results, or with the right ones; where it can be resumed, resuming gives the right ones.
"""
import errno

from shared import faults

SAMPLED = 120  # of 2500: seconds
ERRORS = {"open": errno.EMFILE, "write": errno.ENOSPC, "mkdir": errno.ENOSPC, "mmap": errno.ENOMEM, "thread": errno.EAGAIN,
          "lock": errno.ENOLCK}


def run(options):
    return faults.run(options, "libnadir_failing_calls.so", lambda kind: ERRORS.get(kind, errno.EIO), SAMPLED)
