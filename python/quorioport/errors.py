"""The errors of the package. Each has a text that names the fault."""

from __future__ import annotations

from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from quorioport.job import PrintResult


class QuorError(Exception):
    """The base class of all errors of this package."""


class OperationError(QuorError):
    """The operation failed: there is no accessory, no answer or no space."""


class LinkLostError(QuorError):
    """The link to the printer was lost, or a write failed."""


class UnreadableAnswerError(QuorError):
    """An answer arrived that is not in the form of a printer's answer."""


class NotReadyError(QuorError):
    """The printer is off line and was not asked."""


class UsageError(QuorError, ValueError):
    """A value is not allowed. Nothing was done."""


class SystemFailureError(QuorError, OSError):
    """The system failed, or the library could not be loaded."""


class JournalError(QuorError):
    """The journal of jobs cannot be used. Nothing was sent."""


class NotPrintedError(QuorError):
    """A job was refused or is unconfirmed; `result` has the details."""

    def __init__(self, result: PrintResult) -> None:
        """Keeps the result."""
        super().__init__(f"{result.outcome.value}: {result.reason}; {result.advice}")
        self.result = result
