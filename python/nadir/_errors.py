"""What is raised where the libraries or the program refuse."""
from __future__ import annotations


class Error(Exception):
    """A library refused a call, or cannot be found.

    Attributes:
        status: the number of include/nadir/ground.h that the library returned (NADIR_BAD_CAMERA is 4), or the exit
            status of the program (`ProgramError`); 0 where nothing could be called.
        field: the member that is at fault, "tilt_deg", or "" where the fault lies in none.
    """

    def __init__(self, sentence: str, status: int = 0, field: str = "") -> None:
        super().__init__(sentence)
        self.status = status
        self.field = field


class ProgramError(Error):
    """The program ended with another status than 0; `status` is that, and the words are those of the program.

    Attributes:
        output: what the program had printed, which is a result where the status is 3.
    """

    def __init__(self, sentence: str, status: int, output: str = "") -> None:
        super().__init__(sentence, status)
        self.output = output


class ResultWarning(UserWarning):
    """Says why a result may not be relied on; docs/trust.md explains each."""
