"""What a part raises where the machine lacks what it needs."""


class Skipped(Exception):
    pass
