"""Captured sessions: read_har gives what `zuvo decode --har --jsonl` prints."""

import json

import pytest
import zuvo

from conftest import KEY


@pytest.mark.parametrize("key", [KEY, None])
def test_read_har_equals_the_tool(tool, tmp_path, key):
    har = tmp_path / "session.har"
    tool("demo", "--har", str(har))
    # Without the key every payload is marked: the tool exits 1.
    lines = tool("decode", "--har", str(har), "--jsonl", *(["--key", key] if key else []),
                 check=key is not None)
    expected = [json.loads(line) for line in lines.splitlines()]
    assert len(expected) == 6
    assert list(zuvo.read_har(har, key=key)) == expected
