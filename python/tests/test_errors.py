"""Bad input raises the documented exception carrying the library's failure
record; payloads travel both ways between the module and Python's own
AES-GCM; nothing is printed."""

import base64
import re

import pytest
import zuvo
from cryptography.hazmat.primitives.ciphers.aead import AESGCM

from conftest import KEY, response, seal

WRONG = "ff" * 32

# document, kind, parser, element, open elements, line, column (from 0),
# byte offset, a line of the report
FAILURES = [
    ("<zuvo:response><zuvo:result/></zuvo:response>", "missing_method", "PlainParser",
     "result", ["response", "<start>"], 1, 15, 15, "PlainParser error:"),
    ('<zuvo:response><zuvo:result method="a"><zuvo:authenticationrenewal><zuvo:payload><zuvo:x/>',
     "rejected", "AuthrenewSubParser", "x",
     ["payload", "authenticationrenewal", "result", "response", "<start>"], 1, 81, 81,
     "\tcurrent tag = x"),
    ('<zuvo:response>\n  <zuvo:result method="x">\n</zuvo:response>', "malformed",
     "AuthrenewSubParser", "", ["result", "response", "<start>"], 3, 2, 45,
     "Parse error at offset 45: mismatched tag"),
]


@pytest.mark.parametrize("text, kind, parser, element, open_elements, line, column, offset, "
                         "report", FAILURES)
def test_refused_documents_raise_parse_error(capfd, text, kind, parser, element,
                                             open_elements, line, column, offset, report):
    message = "plain" if parser == "PlainParser" else "authrenew"
    with pytest.raises(zuvo.ParseError) as raised:
        zuvo.parse(message, text)
    error = raised.value
    assert isinstance(error, zuvo.Error)
    assert (error.kind, error.parser, error.element, error.open_elements) == \
        (kind, parser, element, open_elements)
    assert (error.line, error.column, error.byte_offset) == (line, column, offset)
    assert report in error.report.splitlines()
    assert capfd.readouterr() == ("", "")


@pytest.mark.parametrize("key", [None, WRONG])
def test_a_payload_the_key_cannot_open_raises_payload_error(responses, key):
    with pytest.raises(zuvo.PayloadError):
        zuvo.parse("prereg", responses["prereg"].read_text(), key=key)


def test_bad_base64_raises_payload_error():
    text = response("ping", "").replace('encrypted="true">', 'encrypted="false">!!')
    with pytest.raises(zuvo.PayloadError):
        zuvo.parse("ping", text)


def test_python_opens_what_the_module_seals():
    text = zuvo.build("ping", {"clientTime": 1700000042}, key=KEY)
    payload = re.search(r'<zuvo:payload encrypted="true">([^<]*)<', text).group(1)
    sealed = base64.b64decode(payload)
    plain = AESGCM(bytes.fromhex(KEY)).decrypt(sealed[:12], sealed[12:], None).decode()
    assert "<zuvo:clienttime>1700000042</zuvo:clienttime>" in plain
    assert zuvo.decode(text, key=KEY)["payloads"][0]["document"] == plain


def test_the_module_opens_what_python_seals():
    ticket = seal('<zuvo:mticket expiration="1700086400">MT-1</zuvo:mticket>')
    text = response("authorization", '<zuvo:authorization movie_id="5">'
                    f"<zuvo:payload>{ticket}</zuvo:payload></zuvo:authorization>")
    record = zuvo.parse("authorization", text, key=KEY)
    assert (record.serverTime, record.clientTime) == (1700000100, 1700000042)
    assert (record.movieId, record.movieTicket, record.movieTicketExpiration) == \
        (5, base64.b64encode(b"MT-1").decode(), 1700086400)


def test_documents_that_are_not_protocol_raise_error():
    with pytest.raises(zuvo.Error, match="not a protocol document"):
        zuvo.decode("<html/>")
    with pytest.raises(TypeError):
        zuvo.parse("ping", 42)
