"""Requests: every message built in Python equals `zuvo build` with the
same fields; bad fields raise the documented exceptions."""

import json
import os

import pytest
import zuvo

from conftest import KEY


def golden_fields(golden, message):
    with open(os.path.join(golden, f"{message}.json")) as fields:
        return json.load(fields)


@pytest.mark.parametrize("message", zuvo.MESSAGES)
def test_every_message_builds_as_the_tool_does(tool, golden, message):
    fields = golden_fields(golden, message)
    takes_rc = zuvo._zuvo.ANSWERS[message][2]
    rc = ["--rc", "rc-7"] if takes_rc else []
    expected = tool("build", message, "--in", os.path.join(golden, f"{message}.json"), *rc)
    assert zuvo.build(message, fields, rc="rc-7" if takes_rc else None) == expected


def test_encrypted_build_carries_the_same_fields(tool):
    fields = {"movieId": 70143836, "videoProfiles": ["playready-h264mpl30-piff", 10]}
    text = zuvo.build("authorization", fields, key=bytes.fromhex(KEY))
    assert 'encrypted="true"' in text
    decoded = zuvo.decode(text, key=KEY)
    assert decoded == json.loads(tool("decode", "--key", KEY, "-", stdin=text.encode()))
    assert decoded["fields"]["movieId"] == 70143836
    assert decoded["fields"]["videoProfiles"] == ["playready-h264mpl30-piff", None]


def test_bytes_and_records_stand_for_their_json_forms():
    as_json = zuvo.build("logblob", {"logData": "bG9nIGxpbmU="})
    assert zuvo.build("logblob", {"logData": b"log line"}) == as_json
    cookies = {"idCookies": [{"name": "n", "value": "v"}]}
    as_record = {"idCookies": [zuvo.IdCookie(name="n", value="v")]}
    assert zuvo.build("tokenregister", as_record, rc="r") == \
        zuvo.build("tokenregister", cookies, rc="r")


@pytest.mark.parametrize("call, error, names", [
    (lambda: zuvo.build("pong"), ValueError, "'pong'"),
    (lambda: zuvo.build("ping", {"softwareversion": "1"}), ValueError, "'softwareversion'"),
    (lambda: zuvo.build("ping", {"serverTime": "soon"}), TypeError, "'serverTime'"),
    (lambda: zuvo.build("authorization", {"videoProfiles": [object()]}), TypeError,
     "'videoProfiles[0]'"),
    # Integers are checked against the field's own range, never cut down.
    (lambda: zuvo.build("authorization", {"movieId": 2**40}), TypeError, "'movieId'"),
    (lambda: zuvo.build("authorization", {"movieId": -2**31 - 1}), TypeError, "'movieId'"),
    (lambda: zuvo.build("ping", {"serverTime": -1}), TypeError, "'serverTime'"),
    (lambda: zuvo.build("ping", {"serverTime": 2**32}), TypeError, "'serverTime'"),
    (lambda: zuvo.build("ping", {"serverTime": 2**64}), TypeError, "'serverTime'"),
    (lambda: zuvo.build("playdata", {"videoStreamPlayTimes": [{"playTime": 2**63}]}),
     TypeError, r"'videoStreamPlayTimes[0].playTime'"),
    (lambda: zuvo.build("ping", {1: "x"}), TypeError, "field names must be str"),
    (lambda: zuvo.build("ping", rc="x"), ValueError, "rc"),
    (lambda: zuvo.build("ping", key="00ff"), ValueError, "key"),
    (lambda: zuvo.build("ping", key=b"short"), ValueError, "32 bytes"),
])
def test_bad_fields_raise_naming_them(call, error, names):
    with pytest.raises(error, match=names.replace("[", r"\[").replace("]", r"\]")):
        call()


def test_integer_edges_build_as_json_does(tool):
    # The extremes of a signed field go through exactly, as from JSON.
    for movie in (-2**31, 2**31 - 1):
        text = zuvo.build("authorization", {"movieId": movie})
        assert f"<zuvo:movieid>{movie}</zuvo:movieid>" in text
        assert text == tool("build", "authorization", "--set", f"movieId={movie}")


def test_keygen_and_names():
    key = zuvo.keygen()
    assert len(key) == 64 and int(key, 16) >= 0 and key != zuvo.keygen()
    assert zuvo.__version__.startswith("1.")
    assert zuvo.build("ping", {"softwareVersion": "4.2"}).startswith("<?xml")
