// Reading request documents back into request records: the reverse of the
// library's request builder, one reader per message element.
#ifndef ZUVO_TOOL_REQUESTREADER_H
#define ZUVO_TOOL_REQUESTREADER_H

#include "common/Keys.h"
#include "records/JsonFields.h"

#include <string>

namespace zuvocli {

struct XmlElement;

/// The request whose document element (read with readXml) is `root`, as
/// decodeRequest (Decode.h) describes it. Payloads are opened with
/// `context`, in the form the header's payload announces. Throws
/// RejectedError naming what is wrong for a document that is not a request
/// of a known message or whose elements do not fit the message's record.
Json readRequest(const XmlElement& root, const CipherContext& context);

} // namespace zuvocli

#endif
