#!/usr/bin/python3
"""The module against what a Python user would otherwise write, measured
side by side in one run; prints ratios (the point) and medians.

Usage: bench.py RESPONSES_DIR   (a directory written by zuvo_py_samples with
the key below: authorization-60k.xml, authorization-1m.xml)

- parse: zuvo.parse of the 1 MB catalogue into records against
  xml.etree.ElementTree.fromstring of the same bytes (a generic tree that
  knows nothing of the protocol). Target: ratio <= 1.
- build: zuvo.build of an authorization request against the same document
  built with ElementTree and base64 (checked equal first). Target: >= 10x.
- threads: documents per second of 8 threads parsing 60 KB catalogues
  against 1 thread. Target: >= 1.6x on 2 cores.
"""

import base64
import os
import statistics
import sys
import threading
import time
import xml.etree.ElementTree as ET

# The package is imported as built or installed, not from the sources beside
# this script.
sys.path = [p for p in sys.path if os.path.abspath(p or ".") != os.path.dirname(os.path.abspath(__file__))]

import zuvo

KEY = "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f"
NS = "http://www.zuvo.example/qrx/zuvo/2.7"
FIELDS = {"softwareVersion": "4.2.1", "uiVersion": "1.0", "serverTime": 1700000000,
          "clientTime": 1700000042, "movieId": 70143836, "trackId": -1,
          "videoProfiles": ["playready-h264mpl30-piff", "playready-h264hpl40-piff"],
          "audioProfiles": ["heaac-2-piff", "ddplus-5.1-piff"],
          "timedTextProfiles": ["simplesdh"]}


def median_time(work, repeat, number):
    """Median seconds per call of `work` over `repeat` runs of `number` calls."""
    runs = []
    for _ in range(repeat):
        start = time.perf_counter()
        for _ in range(number):
            work()
        runs.append((time.perf_counter() - start) / number)
    return statistics.median(runs)


def tree_build(fields):
    """The authorization request as ElementTree and base64 write it."""
    ET.register_namespace("zuvo", NS)

    def sub(parent, name, text=None):
        element = ET.SubElement(parent, f"{{{NS}}}{name}")
        element.text = text
        return element

    times = ET.Element(f"{{{NS}}}clientservertimes")
    sub(times, "servertime", str(fields["serverTime"]))
    sub(times, "clienttime", str(fields["clientTime"]))
    ET.indent(times, space="\t")
    # The fragment is written on its own: no namespace declaration in it.
    fragment = ET.tostring(times, encoding="unicode").replace(f' xmlns:zuvo="{NS}"', "") + "\n"

    request = ET.Element(f"{{{NS}}}request")
    header = sub(request, "header")
    sub(header, "softwareversion", fields["softwareVersion"])
    sub(header, "uiversion", fields["uiVersion"])
    payload = sub(header, "payload", base64.b64encode(fragment.encode()).decode())
    payload.set("encrypted", "false")
    auth = sub(request, "authorization")
    sub(auth, "movieid", str(fields["movieId"]))
    sub(auth, "trackid", str(fields["trackId"]))
    profiles = sub(auth, "contentprofiles")
    for kind in ("video", "audio", "timedtext"):
        group = sub(profiles, f"{kind}profiles")
        key = {"video": "videoProfiles", "audio": "audioProfiles",
               "timedtext": "timedTextProfiles"}[kind]
        for profile in fields[key]:
            sub(group, f"{kind}profile", profile)
    ET.indent(request, space="\t")
    return ('<?xml version="1.0" encoding="UTF-8"?>\n' +
            ET.tostring(request, encoding="unicode") + "\n")


def thread_rate(text, threads, per_thread):
    """Documents per second of `threads` threads each parsing `per_thread`."""
    start_line = threading.Barrier(threads + 1)

    def work():
        start_line.wait()
        for _ in range(per_thread):
            zuvo.parse("authorization", text, key=KEY)

    workers = [threading.Thread(target=work) for _ in range(threads)]
    for worker in workers:
        worker.start()
    start_line.wait()
    start = time.perf_counter()
    for worker in workers:
        worker.join()
    return threads * per_thread / (time.perf_counter() - start)


def main():
    directory = sys.argv[1]
    with open(os.path.join(directory, "authorization-1m.xml"), "rb") as big:
        catalogue = big.read()
    with open(os.path.join(directory, "authorization-60k.xml"), "rb") as small:
        medium = small.read()

    rows = []
    ours = median_time(lambda: zuvo.parse("authorization", catalogue, key=KEY), 9, 5)
    tree = median_time(lambda: ET.fromstring(catalogue), 9, 5)
    rows.append(("parse 1 MB catalogue: zuvo.parse / ElementTree.fromstring",
                 f"{ours * 1e3:.2f} ms / {tree * 1e3:.2f} ms", ours / tree, "<= 1.0"))

    expected = zuvo.build("authorization", FIELDS)
    assert tree_build(FIELDS) == expected, "the two builds differ"
    ours = median_time(lambda: zuvo.build("authorization", FIELDS), 9, 2000)
    tree = median_time(lambda: tree_build(FIELDS), 9, 200)
    rows.append(("build authorization: ElementTree+base64 / zuvo.build",
                 f"{tree * 1e6:.1f} us / {ours * 1e6:.1f} us", tree / ours, ">= 10"))

    one = statistics.median(thread_rate(medium, 1, 160) for _ in range(5))
    eight = statistics.median(thread_rate(medium, 8, 20) for _ in range(5))
    rows.append(("parse 60 KB catalogues: 8 threads / 1 thread (docs/s)",
                 f"{eight:.0f} / {one:.0f}", eight / one, ">= 1.6"))

    print(f"{'benchmark (median)':58} {'times':>24} {'ratio':>7}  target")
    for name, times, ratio, target in rows:
        print(f"{name:58} {times:>24} {ratio:7.2f}  {target}")


if __name__ == "__main__":
    main()
