// The report sub-room: views of a decoded session, fed one exchange at a
// time as decodeSession hands them on, so that they print as they go.
#ifndef ZUVO_TOOL_VIEWS_H
#define ZUVO_TOOL_VIEWS_H

#include "capture/Exchange.h"

#include <memory>
#include <ostream>
#include <string>

namespace zuvocli {

/// A view of a session being decoded.
class SessionView {
public:
    virtual ~SessionView() = default;
    /// Shows one exchange (as decodeCapturedExchange makes it).
    virtual void exchange(const Json& exchange) = 0;
    /// Closes the view with the session's summary; with `verbose`, every
    /// skipped entry is listed with its reason.
    virtual void finish(const SessionSummary& summary, bool verbose) = 0;
};

/// One line per exchange on `out` (start time, entry, message, HTTP status,
/// duration, outcome, user text or reason) and a closing summary line.
/// `out` must outlive the view.
std::unique_ptr<SessionView> makeTableView(std::ostream& out);

/// One self-contained HTML file on `out`: the session table, each
/// exchange's decoded request and response to expand, and the summary. No
/// scripts, no external assets. `title` names the capture. `out` must
/// outlive the view.
std::unique_ptr<SessionView> makeHtmlReport(std::ostream& out, const std::string& title);

/// The words a reader sees for an outcome ("refused by the server").
std::string outcomeWords(const std::string& outcome);

/// "9 exchanges: 7 ok, 1 refused by the server, 1 not protocol; 5 entries
/// skipped" and the warnings after it, one per line.
std::string summaryText(const SessionSummary& summary);

} // namespace zuvocli

#endif
