"""A mitmproxy content view that shows zuvo protocol bodies decoded.

Load it into mitmproxy, mitmdump or mitmweb as an addon script:

    mitmweb -s "$(/usr/bin/python3 -c 'import zuvo.mitmproxy as m; print(m.__file__)')" \\
        --set zuvo_key=device.key

Request and response bodies that are protocol documents are then shown as
the fields `zuvo decode` prints, payloads opened with the key (64 hex digits,
or a file holding them; without one, encrypted payloads are marked as
unreadable and the rest still shows). Other bodies keep their usual views.
"""

import json
import os
from typing import Optional

from mitmproxy import contentviews, ctx

import zuvo

# How a protocol document starts, past its XML declaration.
_ROOTS = (b"<zuvo:request", b"<zuvo:response")


def _looks_like_protocol(data: bytes) -> bool:
    head = data[:512]
    return any(root in head for root in _ROOTS)


def _key_from_option(value: str) -> Optional[str]:
    value = value.strip()
    if not value:
        return None
    if os.path.isfile(value):
        with open(value, encoding="ascii") as f:
            return f.read().strip()
    return value


class ZuvoView(contentviews.View):
    """Decodes a protocol request or response with the zuvo module."""

    name = "zuvo"

    def __call__(self, data, *, content_type=None, flow=None, http_message=None,
                 **unknown_metadata):
        try:
            decoded = zuvo.decode(data, key=_key_from_option(ctx.options.zuvo_key))
        except (zuvo.Error, ValueError) as e:
            return "zuvo: not decoded", iter([[("error", str(e))]])
        what = decoded.get("request") or decoded.get("response") or "document"
        lines = json.dumps(decoded, indent=2, ensure_ascii=False).splitlines()
        return f"zuvo {what}", iter([[("text", line)] for line in lines])

    def render_priority(self, data, *, content_type=None, flow=None, http_message=None,
                        **unknown_metadata):
        # Above the XML view, which would otherwise show the Base64 payloads.
        return 2.0 if _looks_like_protocol(data) else 0.0


_view = ZuvoView()


def load(loader):
    loader.add_option("zuvo_key", str, "",
                      "The key that opens zuvo payloads: 64 hex digits, or a file holding them.")
    contentviews.add(_view)


def done():
    contentviews.remove(_view)
