// The session as a text table, one line per exchange, printed as each
// exchange is decoded.
#include "capture/report/Views.h"

#include <cstdio>

namespace zuvocli {
namespace {

/// `text` on one line, at most `width` characters (UTF-8 kept whole).
std::string oneLine(std::string text, std::size_t width) {
    for (char& c : text) {
        if (c == '\n' || c == '\r' || c == '\t')
            c = ' ';
    }
    text.erase(text.find_last_not_of(' ') + 1);
    std::size_t cut = 0;
    std::size_t characters = 0;
    while (cut < text.size() && characters < width) {
        ++cut;
        while (cut < text.size() && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
            ++cut;
        ++characters;
    }
    return cut < text.size() ? text.substr(0, cut) + "..." : text;
}

/// The clock time of an ISO 8601 start ("14:51:46.279"), or the text as
/// written when it is not one.
std::string clock(const std::string& started) {
    if (started.size() >= 23 && started[10] == 'T' && started[19] == '.')
        return started.substr(11, 12);
    if (started.size() >= 19 && started[10] == 'T')
        return started.substr(11, 8) + ".000";
    return started.empty() ? "-" : oneLine(started, 12);
}

std::string padded(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

class TableView : public SessionView {
public:
    explicit TableView(std::ostream& out) : out(out) {}

    void exchange(const Json& x) override {
        if (!headed) {
            out << padded("START", 12) << " ENTRY  " << padded("MESSAGE", 18) << ' '
                << padded("HTTP", 20) << "       TIME  " << padded("OUTCOME", 23) << " TEXT\n";
            headed = true;
        }
        char entry[16];
        std::snprintf(entry, sizeof entry, "%5zu", x["entry"].get<std::size_t>());
        char time[24];
        std::snprintf(time, sizeof time, "%7.0f ms", x["time"].get<double>());
        const std::string status =
            x["status"].get<int>() == 0
                ? std::string("-")
                : std::to_string(x["status"].get<int>()) + " " + x["statusText"].get<std::string>();
        std::string text = x["reason"].get<std::string>();
        if (x.contains("duplicateOf"))
            text = "(same as entry " + std::to_string(x["duplicateOf"].get<std::size_t>()) + ") " +
                   text;
        out << clock(x["startedDateTime"].get<std::string>()) << ' ' << entry << "  "
            << padded(x["message"].is_string() ? x["message"].get<std::string>() : "?", 18) << ' '
            << padded(oneLine(status, 20), 20) << ' ' << time << "  "
            << padded(outcomeWords(x["outcome"].get<std::string>()), 23) << ' ' << oneLine(text, 80)
            << '\n'
            << std::flush;
    }

    void finish(const SessionSummary& summary, bool verbose) override {
        if (verbose) {
            for (const SkippedEntry& skip : summary.skipped)
                out << "entry " << skip.number << " skipped: " << skip.reason << '\n';
        }
        out << summaryText(summary) << '\n' << std::flush;
    }

private:
    std::ostream& out;
    bool headed = false;
};

} // namespace

std::string outcomeWords(const std::string& outcome) {
    static const std::pair<const char*, const char*> WORDS[] = {
        {OUTCOME_OK, "ok"},
        {OUTCOME_REFUSED, "refused by the server"},
        {OUTCOME_REJECTED, "rejected by the parser"},
        {OUTCOME_UNREADABLE, "unreadable payload"},
        {OUTCOME_NOT_PROTOCOL, "not protocol"},
        {OUTCOME_NO_RESPONSE, "no response"},
    };
    for (const auto& words : WORDS) {
        if (outcome == words.first)
            return words.second;
    }
    return outcome;
}

std::string summaryText(const SessionSummary& summary) {
    std::string text =
        std::to_string(summary.exchanges) + " exchange" + (summary.exchanges == 1 ? "" : "s");
    const char* separator = ": ";
    for (const auto& outcome : summary.outcomes) {
        text += separator + std::to_string(outcome.second) + " " + outcomeWords(outcome.first);
        separator = ", ";
    }
    text += "; " + std::to_string(summary.skipped.size()) + " of " +
            std::to_string(summary.entries) + " entries skipped";
    for (const std::string& warning : summary.warnings)
        text += "\nwarning: " + warning;
    return text;
}

std::unique_ptr<SessionView> makeTableView(std::ostream& out) {
    return std::make_unique<TableView>(out);
}

} // namespace zuvocli
