"""Shared fixtures: the `zuvo` tool to compare with, generated responses
with payloads sealed under one key, and small response documents of every
type. CTest sets ZUVO_TOOL, ZUVO_SAMPLES_BIN and ZUVO_GOLDEN."""

import base64
import json
import os
import subprocess

import pytest
from cryptography.hazmat.primitives.ciphers.aead import AESGCM

KEY = "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f"
NS = "http://www.zuvo.example/qrx/zuvo/2.7"


def seal(fragment: str, key: str = KEY) -> str:
    """The payload text of `fragment`, sealed by Python's own AES-GCM."""
    nonce = os.urandom(12)
    return base64.b64encode(nonce + AESGCM(bytes.fromhex(key)).encrypt(
        nonce, fragment.encode(), None)).decode()


def response(method: str, body: str) -> str:
    """A whole response document around the result `body`."""
    times = seal("<zuvo:servertime>1700000100</zuvo:servertime>"
                 "<zuvo:clienttime>1700000042</zuvo:clienttime>")
    return (f'<?xml version="1.0" encoding="UTF-8"?>\n'
            f'<zuvo:response xmlns:zuvo="{NS}" version="2.7">\n'
            f"<zuvo:responseheader><zuvo:status><zuvo:success>true</zuvo:success>"
            f"<zuvo:code>17</zuvo:code></zuvo:status><zuvo:parameters>"
            f"<zuvo:loguploads><zuvo:crash/></zuvo:loguploads></zuvo:parameters>"
            f'<zuvo:payload encrypted="true">{times}</zuvo:payload></zuvo:responseheader>\n'
            f'<zuvo:result method="{method}">{body}</zuvo:result>\n</zuvo:response>\n')


PROVISION = "<zuvo:provisionresponsedata><zuvo:rs>cert-bytes</zuvo:rs></zuvo:provisionresponsedata>"

# Response type -> (method attribute, result body) for the small documents.
SMALL_RESPONSES = {
    "plain": ("ping", ""),
    "x509provision": ("x509provision", PROVISION),
    "ecclinkprovision": ("ecclinkprovision", PROVISION),
    "npticketprovision": ("npticketprovision", PROVISION),
    "webapiproxy": ("webapiproxy",
                    '<zuvo:webapiproxy><zuvo:httpbody>{"id": 7}</zuvo:httpbody></zuvo:webapiproxy>'),
}


@pytest.fixture(scope="session")
def tool():
    """Runs the `zuvo` tool; returns its standard output."""
    binary = os.environ.get("ZUVO_TOOL")
    if not binary:
        pytest.skip("ZUVO_TOOL is not set")

    def run(*args, stdin=None, check=True):
        return subprocess.run([binary, *args], input=stdin, capture_output=True, check=check,
                              timeout=60).stdout.decode()
    return run


@pytest.fixture(scope="session")
def golden():
    return os.environ["ZUVO_GOLDEN"]


@pytest.fixture(scope="session")
def responses(tmp_path_factory):
    """Response type -> path of a document whose payloads KEY opens."""
    directory = tmp_path_factory.mktemp("responses")
    subprocess.run([os.environ["ZUVO_SAMPLES_BIN"], str(directory), KEY], check=True, timeout=60)
    paths = {"authorization": directory / "authorization-60k.xml",
             "authorization-1m": directory / "authorization-1m.xml",
             "prereg": directory / "prereg.xml", "register": directory / "register.xml",
             "authrenew": directory / "authrenew.xml"}
    for name, (method, body) in SMALL_RESPONSES.items():
        paths[name] = directory / f"{name}.xml"
        paths[name].write_text(response(method, body))
    return paths


def tool_json(tool, *args):
    return json.loads(tool(*args))
