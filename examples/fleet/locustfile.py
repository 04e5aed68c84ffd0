"""A fleet of simulated devices for Locust, speaking the zuvo protocol.

Each Locust user is one device living a whole device life against a zuvo
server: a ping, pre-registration, registration with the code it was given,
authorization of a title, a play data report about what it played, a log
upload and an authentication renewal, with the pauses a real device makes
between them. Every request is reported to Locust under its message name,
and fails when the server refuses it (HTTP status, or success false in the
response) or the library's parser rejects the answer. A completed life is
reported as request type "device", name "life", so its rate is the number
of devices completed per second.

Run it through scripts/run-fleet, or by hand against a running server:

    /usr/bin/python3 -m locust -f examples/fleet/locustfile.py --headless \
        -H http://127.0.0.1:8080 -u 100 -r 20 -t 60s --zuvo-key-file device.key
"""

import base64
import itertools
import json
import os
import random
import time

import gevent
import locust.runners
from locust import HttpUser, events, task

import zuvo

# Debian's Locust package carries an empty version string, which a master
# takes for a worker older than 2.0 and refuses; -1 is the version a worker
# sends to skip the check.
if not locust.runners.__version__:
    locust.runners.__version__ = -1

# The video, audio and timed-text profiles a device of each kind offers, as
# their wire identifiers.
DEVICE_KINDS = {
    "stb": (["playready-h264mpl30-piff", "playready-h264mpl31-piff",
             "playready-h264hpl40-piff"],
            ["heaac-2-piff", "ddplus-5.1-piff"], ["simplesdh"]),
    "player": (["playready-h264mpl30-piff"], ["heaac-2-piff"], ["simplesdh"]),
    "tv": (["playready-h264mpl30-piff", "playready-h264hpl40-piff"],
           ["heaac-2-piff", "ddplus-5.1-piff"], []),
}


@events.init_command_line_parser.add_listener
def _options(parser):
    group = parser
    group.add_argument("--zuvo-key", default="", include_in_web_ui=False,
                       help="the key shared with the server, 64 hex digits (none: payloads "
                            "in Base64)")
    group.add_argument("--zuvo-key-file", default="", include_in_web_ui=False,
                       help="a file holding the key")
    group.add_argument("--zuvo-path", default="/", help="the URL path requests are posted to")
    group.add_argument("--zuvo-mix", default="stb:2,player:1,tv:1",
                       help="device kinds and their weights, e.g. stb:2,player:1,tv:1 (kinds: "
                            + ", ".join(DEVICE_KINDS) + ")")
    group.add_argument("--zuvo-catalogue", type=int, default=1000,
                       help="titles in the catalogue; each device authorizes one at random")
    group.add_argument("--zuvo-think", type=float, default=1.0,
                       help="scale of the pauses between a device's requests (0: none)")
    group.add_argument("--zuvo-workers-file", default="",
                       help="the master writes the workers that reported statistics here, "
                            "one id per line, when the test ends")


def _key(options):
    if options.zuvo_key:
        return options.zuvo_key
    if options.zuvo_key_file:
        with open(options.zuvo_key_file, encoding="ascii") as f:
            return f.read().strip()
    return None


def _mix(text):
    kinds, weights = [], []
    for part in text.split(","):
        name, _, weight = part.partition(":")
        if name.strip() not in DEVICE_KINDS:
            raise ValueError(f"--zuvo-mix: unknown device kind '{name.strip()}'")
        kinds.append(name.strip())
        weights.append(float(weight or 1))
    return kinds, weights


# The master remembers which workers sent statistics with requests in them.
_reporting_workers = set()


@events.worker_report.add_listener
def _on_worker_report(client_id, data, **_kw):
    if data.get("stats") or data.get("stats_total", {}).get("num_requests"):
        _reporting_workers.add(client_id)


@events.test_stop.add_listener
def _on_test_stop(environment, **_kw):
    path = environment.parsed_options and environment.parsed_options.zuvo_workers_file
    if path and _reporting_workers:
        with open(path, "w", encoding="ascii") as f:
            f.write("".join(f"{w}\n" for w in sorted(_reporting_workers)))


_serial = itertools.count(1)


class Device(HttpUser):
    """One device: it registers once, then plays titles until the test ends."""

    # The device paces itself inside its life; Locust adds no pause.
    wait_time = staticmethod(lambda: 0)

    def on_start(self):
        options = self.environment.parsed_options
        self.key = _key(options)
        self.path = options.zuvo_path
        self.think_scale = options.zuvo_think
        self.catalogue = max(1, options.zuvo_catalogue)
        kinds, weights = _mix(options.zuvo_mix)
        self.kind = random.choices(kinds, weights)[0]
        self.rc = f"rc-{os.getpid()}-{next(_serial)}-{random.getrandbits(32):08x}"
        self.server_time = 0
        self.log_sequence = 0

    def think(self, low, high):
        if self.think_scale > 0:
            gevent.sleep(random.uniform(low, high) * self.think_scale)

    def exchange(self, message, fields=None, *, rc=None, parse_as=None):
        """Posts one request and returns the parsed answer, or reports the
        failure to Locust and raises _Failed."""
        fields = dict(fields or {})
        fields.setdefault("softwareVersion", "4.2.1")
        fields.setdefault("uiVersion", "1.0")
        fields["serverTime"] = self.server_time
        fields["clientTime"] = int(time.time())
        body = zuvo.build(message, fields, key=self.key, rc=rc)
        with self.client.post(self.path, data=body.encode(), name=message,
                              headers={"Content-Type": "text/xml; charset=utf-8"},
                              catch_response=True) as response:
            if response.status_code != 200:
                response.failure(f"HTTP {response.status_code}: {response.text[:200]}")
                raise _Failed()
            try:
                record = zuvo.parse(parse_as or message, response.content, key=self.key)
            except zuvo.Error as e:
                response.failure(f"{type(e).__name__}: {e}")
                raise _Failed()
            if not record.success:
                response.failure(f"refused: code {record.code}, {record.userText}")
                raise _Failed()
            response.success()
        self.server_time = record.serverTime
        return record

    @task
    def life(self):
        started = time.time()
        try:
            self.exchange("ping")
            self.think(0.5, 1.5)
            prereg = self.exchange("prereg")
            # The user types the code shown on screen into the web site.
            self.think(2, 5)
            self.exchange("register", {"regCode": prereg.regCode}, rc=self.rc)
            self.think(1, 3)
            videos, audios, texts = DEVICE_KINDS[self.kind]
            auth = self.exchange("authorization", {
                "movieId": random.randint(70000000, 70000000 + self.catalogue - 1),
                "videoProfiles": videos, "audioProfiles": audios,
                "timedTextProfiles": texts})
            # Playback: the device reports what it played of each stream.
            self.think(5, 15)
            played = int(random.uniform(60, 600))
            self.exchange("playdata", {
                "lticket": auth.movieTicket, "movieId": auth.movieId,
                "totalPlaybackTime": played,
                "videoStreamPlayTimes": [
                    {"downloadableId": d.downloadableId, "playTime": played}
                    for d in auth.videoDownloadables[:1]],
            })
            self.think(1, 3)
            self.log_sequence += 1
            log = f"device {self.rc} kind {self.kind} played {auth.movieId} for {played} s\n"
            self.exchange("logblob", {"sequenceNumber": self.log_sequence,
                                      "logData": base64.b64encode(log.encode()).decode()})
            self.think(1, 3)
            self.exchange("authrenew", {"renewalType": 0}, rc=self.rc)
        except _Failed:
            # The device starts over after a pause, as a real one would.
            self.think(5, 10)
            return
        events.request.fire(request_type="device", name="life",
                            response_time=(time.time() - started) * 1000,
                            response_length=0, exception=None, context={})
        self.think(5, 10)


class _Failed(Exception):
    """An exchange failed and was reported; the life ends here."""
