// The messages `zuvo build` knows: name, record, whether it takes `rc`,
// the response that answers it.
#ifndef ZUVO_TOOL_REQUESTMESSAGES_H
#define ZUVO_TOOL_REQUESTMESSAGES_H

#include "common/Keys.h"
#include "records/JsonFields.h"

#include <functional>
#include <string>
#include <vector>

namespace zuvocli {

/// Runs the library's builder handed to it; a front end that must leave a
/// lock while the library works wraps the call.
typedef std::function<void(const std::function<void()>& builder)> BuilderRunner;

/// One message of the request side.
struct RequestMessage {
    const char* name;   ///< command-line name, e.g. "authorization"
    const char* record; ///< the request record, e.g. "AuthRequestData"
    bool takesRc;       ///< the builder takes the caller's `rc` text
    const char* answer; ///< the response type (as `zuvo parse` names it) answering it
    /// Builds the document: the record starts from its defaults, takes the
    /// fields of `input` (null: none), then each `--set` in order; the
    /// library's builder then runs inside `run`. Throws UsageError for a
    /// field the record cannot hold, and what the builder throws.
    std::function<std::string(const FieldValue* input, const std::vector<std::string>& settings,
                              const std::string& rc, const CipherContext& context,
                              const BuilderRunner& run)>
        buildFrom;
    /// `buildFrom` with JSON fields (null: none), the builder run directly.
    std::string build(const Json& input, const std::vector<std::string>& settings,
                      const std::string& rc, const CipherContext& context) const;
    /// `fields` (in `--in` form) through the record's field table: checked,
    /// completed with the defaults, in record order. UsageError for a value
    /// the record cannot hold.
    std::function<Json(const Json& fields)> normalize;
    /// The record's own field names, after the header fields every record
    /// starts with (softwareVersion, uiVersion, serverTime, clientTime).
    std::string ownFields;
};

/// Every message, in protocol order.
const std::vector<RequestMessage>& requestMessages();

/// The message named `name`; UsageError listing the known ones otherwise.
const RequestMessage& findRequestMessage(const std::string& name);

} // namespace zuvocli

#endif
