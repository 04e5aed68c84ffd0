"""Responses: every response type parsed in Python equals `zuvo parse`'s
JSON; records behave as documented; the record classes match the tables
and the shipped stubs."""

import ast
import os
import threading

import pytest
import zuvo

from conftest import KEY, tool_json

TYPES = [name for name, _record in zuvo._zuvo.RESPONSE_TYPES]


@pytest.mark.parametrize("kind", TYPES)
def test_every_response_parses_as_the_tool_does(tool, responses, kind):
    path = responses[kind]
    record = zuvo.parse(kind, path.read_bytes(), key=KEY)
    assert type(record).__name__ == dict(zuvo._zuvo.RESPONSE_TYPES)[kind]
    assert record.to_dict() == tool_json(tool, "parse", kind, str(path), "--key", KEY)
    assert record.to_dict() == zuvo.decode(path.read_text(), key=KEY)["fields"]


def test_a_request_message_names_its_answer_and_any_bytes_serve(responses):
    text = responses["register"].read_text()
    assert zuvo.parse("tokenregister", text, key=KEY) == zuvo.parse("register", text, key=KEY)
    raw = bytearray(text.encode())
    by_text = zuvo.parse("register", text, key=KEY)
    assert zuvo.parse("register", raw, key=KEY) == by_text
    assert zuvo.parse("register", memoryview(raw), key=KEY) == by_text
    assert type(zuvo.parse("ping", responses["plain"].read_text(), key=KEY)) is zuvo.ResponseData


def test_records_nest_compare_and_print(responses):
    record = zuvo.parse("authorization", responses["authorization"].read_text(), key=KEY)
    video = record.videoDownloadables[0]
    assert isinstance(video, zuvo.VideoDownloadableData)
    assert isinstance(video.downloadUrls[0], zuvo.UrlData)
    assert isinstance(record.audioTracks[0].language, zuvo.LanguageData)
    again = zuvo.parse("authorization", responses["authorization"].read_text(), key=KEY)
    assert record == again and record != zuvo.ResponseData()
    again.videoDownloadables[0].bitrate += 1
    assert record != again
    assert repr(video).startswith(f"VideoDownloadableData(downloadableId={video.downloadableId!r}")


def test_record_classes_are_the_tables_and_the_stubs():
    layouts = zuvo._zuvo.layouts()
    # Nested response records are recognised by their fields: none may share
    # them with another response record (the provisioning answers, never
    # nested, share theirs).
    tops = {record for _kind, record in zuvo._zuvo.RESPONSE_TYPES}
    read = [fields for _name, fields, response in layouts if response]
    nested = [fields for name, fields, response in layouts if response and name not in tops]
    assert all(read.count(fields) == 1 for fields in nested)
    stub = ast.parse(open(os.path.join(os.path.dirname(zuvo.__file__), "__init__.pyi")).read())
    stubbed = {node.name: tuple(item.target.id for item in node.body
                                if isinstance(item, ast.AnnAssign))
               for node in stub.body if isinstance(node, ast.ClassDef)}
    for name, fields, _response in layouts:
        assert getattr(zuvo, name)._fields == fields
        assert stubbed[name] == fields, name
        # Each field once, in the table's order, in the tool's JSON as well.
        assert len(set(fields)) == len(fields), name
        assert tuple(zuvo._zuvo.default_record(name).to_dict()) == fields, name
    assert os.path.exists(os.path.join(os.path.dirname(zuvo.__file__), "py.typed"))


def test_eight_threads_read_what_one_thread_reads(responses):
    documents = [(kind, responses[kind].read_bytes()) for kind in TYPES]
    expected = [zuvo.parse(kind, text, key=KEY) for kind, text in documents]
    results = [None] * 8
    start = threading.Barrier(8)

    def work(slot):
        start.wait()
        results[slot] = [[zuvo.parse(kind, text, key=KEY) for kind, text in documents]
                         for _ in range(3)]

    threads = [threading.Thread(target=work, args=(slot,)) for slot in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join(timeout=120)
    for rounds in results:
        assert rounds is not None and all(parsed == expected for parsed in rounds)
