"""python -m nadir: the program that the package runs, with its own options."""
import os
import sys

from ._places import program_path

if __name__ == "__main__":
    os.execv(program_path(), ["nadir", *sys.argv[1:]])
