"""The zuvo control protocol from Python, on the library the devices link.

Build request documents from fields, read responses into record objects,
decode any protocol document or a captured session::

    import zuvo
    key = zuvo.keygen()
    text = zuvo.build("authorization", {"movieId": 70143836}, key=key)
    record = zuvo.parse("authorization", response_body, key=key)
    record.videoDownloadables[0].bitrate

Field and message names are those of the ``zuvo`` tool and its JSON. The
interpreter lock is released while the library builds or parses.
"""

from typing import Any, Dict, Iterator

from . import _zuvo

__all__ = ["__version__", "MESSAGES", "keygen", "build", "parse", "decode", "read_har",
           "Error", "ParseError", "PayloadError", "Record"]

__version__: str = _zuvo.VERSION
MESSAGES = _zuvo.MESSAGES


class Error(Exception):
    """A document or payload the library refused."""


class ParseError(Error):
    """A response that is malformed XML or that its parser rejected.

    Attributes are the library's failure record: ``kind`` ("malformed",
    "rejected", "mismatched_end", "missing_method", "no_cipher_context", "payload"),
    ``parser``, ``element``, ``open_elements`` (innermost first), ``line``
    (from 1), ``column`` (from 0, in characters), ``byte_offset`` and
    ``report``, the parser's own report text.
    """

    kind: str = ""
    parser: str = ""
    element: str = ""
    open_elements: list = []
    line: int = 0
    column: int = 0
    byte_offset: int = -1
    report: str = ""


class PayloadError(Error):
    """A payload the key cannot open: the wrong key, no key, bad Base64."""


class Record:
    """A record the library filled: one attribute per field, in record order.

    Values are as ``zuvo parse`` prints them: byte strings as Base64 text,
    content profiles as identifiers (None for one without), nested records
    as records and lists as lists.
    """

    _fields: tuple = ()

    def __init__(self, **fields: Any) -> None:
        for name in self._fields:
            setattr(self, name, fields.pop(name, None))
        if fields:
            raise TypeError(f"{type(self).__name__} has no field {next(iter(fields))!r}")

    def __eq__(self, other: object) -> bool:
        if type(other) is not type(self):
            return NotImplemented
        return self.__dict__ == other.__dict__

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        inner = ", ".join(f"{name}={value!r}" for name, value in self.__dict__.items())
        return f"{type(self).__name__}({inner})"

    def to_dict(self) -> Dict[str, Any]:
        """The record as ``zuvo parse`` prints it as JSON."""
        return {name: _plain(value) for name, value in self.__dict__.items()}


def _plain(value: Any) -> Any:
    if isinstance(value, Record):
        return value.to_dict()
    if isinstance(value, list):
        return [_plain(item) for item in value]
    return value


def _record_classes() -> Dict[str, type]:
    classes = {}
    for name, fields, _response in _zuvo.layouts():
        classes[name] = type(name, (Record,), {"_fields": fields, "__module__": __name__})
    return classes


_RECORDS = _record_classes()
globals().update(_RECORDS)
__all__ += sorted(_RECORDS)
_zuvo._bind(Error, ParseError, PayloadError, _RECORDS)


def keygen() -> str:
    """A fresh random key: 64 hex digits."""
    return _zuvo.keygen()


# build(message, fields=None, *, key=None, rc=None) -> str: the extension's
# own function (see its docstring), without a Python frame in front of it.
build = _zuvo.build


def parse(message: str, text: Any, *, key: Any = None) -> Record:
    """The response to ``message`` (or "plain": the header only) as a record.

    Raises ParseError for a malformed or rejected document, PayloadError for
    a payload the key cannot open, ValueError for an unknown message.
    """
    return _zuvo.parse(message, text, key)


def decode(text: Any, *, key: Any = None) -> Dict[str, Any]:
    """Any request or response document, recognised by its content, as
    ``zuvo decode`` prints it. Payloads that do not open are marked with
    "error". Raises ParseError for a response its parser refuses and Error
    for a document that is not a protocol document."""
    return _zuvo.decode(text, key)


def read_har(path: Any, *, key: Any = None) -> Iterator[Dict[str, Any]]:
    """The protocol exchanges of the HTTP Archive file at ``path``, in
    order, each as one line of ``zuvo decode --har --jsonl``. Raises Error
    when the file is not HAR, OSError when it cannot be read."""
    with open(path, "rb") as har:
        session = _zuvo.HarFile(har.read(), str(path))
    yield from session.exchanges(key=key)
