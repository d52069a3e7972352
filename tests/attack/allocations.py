"""Failing allocations: each allocation of a small run of every command fails once, and from then on. The run must end
with one sentence and the old results, or with the right ones; the slowest command tries every tenth.
"""
import errno

from shared import faults

SAMPLED = 160  # of 30000: seconds


def run(options):
    return faults.run(options, "libnadir_failing_allocations.so", lambda kind: errno.ENOMEM, SAMPLED)
