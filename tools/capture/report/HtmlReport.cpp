// The session as one self-contained HTML file a support engineer can attach
// to a ticket: a table of the exchanges, each row opening onto its decoded
// request and response. Written as exchanges are decoded; no scripts, no
// external assets, so it opens anywhere without a network.
#include "capture/report/Views.h"

#include "records/ResponseTypes.h"

#include <cstdio>

namespace zuvocli {
namespace {

/// `text` safe inside HTML text and attribute values.
std::string escaped(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
    return out;
}

const char* const STYLE =
    "body{font:14px/1.4 sans-serif;margin:1.5em;color:#222}"
    "h1{font-size:1.3em}table{border-collapse:collapse;width:100%}"
    "th,td{text-align:left;padding:.25em .6em;border-bottom:1px solid #ddd;vertical-align:top}"
    "th{background:#f3f3f3}td.n{text-align:right}td:nth-child(-n+6){white-space:nowrap}"
    "tr.ok td.o{color:#176f2c}tr.refused td.o,tr.rejected td.o{color:#a15c00}"
    "tr.unreadable td.o,tr.not-protocol td.o,tr.no-response td.o{color:#b00020}"
    "details summary{cursor:pointer;color:#1a4f9c}"
    "pre{background:#f7f7f7;padding:.5em;overflow:auto;max-height:30em;font-size:12px}"
    "p.summary{font-weight:bold}";

class HtmlReport : public SessionView {
public:
    HtmlReport(std::ostream& out, const std::string& title) : out(out) {
        out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
            << "<title>zuvo session: " << escaped(title) << "</title><style>" << STYLE
            << "</style></head><body>\n<h1>zuvo session: " << escaped(title) << "</h1>\n"
            << "<table id=\"exchanges\"><thead><tr><th>start</th><th>entry</th><th>message</th>"
               "<th>HTTP</th><th>time</th><th>outcome</th><th>text</th><th>details</th></tr>"
               "</thead><tbody>\n";
    }

    void exchange(const Json& x) override {
        std::string outcome = x["outcome"].get<std::string>();
        std::string css = outcome;
        for (char& c : css)
            c = c == ' ' ? '-' : c;
        char time[24];
        std::snprintf(time, sizeof time, "%.0f ms", x["time"].get<double>());
        std::string status =
            std::to_string(x["status"].get<int>()) + " " + x["statusText"].get<std::string>();
        if (x.contains("failure"))
            status += " (" + x["failure"].get<std::string>() + ")";
        Json shown = x;
        shown.erase("request");
        shown.erase("response");
        out << "<tr class=\"exchange " << css << "\"><td>"
            << escaped(x["startedDateTime"].get<std::string>()) << "</td><td class=\"n\">"
            << x["entry"].get<std::size_t>() << "</td><td>"
            << escaped(x["message"].is_string() ? x["message"].get<std::string>() : "?")
            << "</td><td>" << escaped(status) << "</td><td class=\"n\">" << time
            << "</td><td class=\"o\">" << escaped(outcomeWords(outcome)) << "</td><td>"
            << escaped(x["reason"].get<std::string>()) << "</td><td><details><summary>"
            << "decoded</summary><pre>" << escaped(dumpJson(shown)) << "</pre><pre>"
            << escaped(dumpJson(x["request"])) << "</pre><pre>" << escaped(dumpJson(x["response"]))
            << "</pre></details></td></tr>\n";
    }

    void finish(const SessionSummary& summary, bool) override {
        out << "</tbody></table>\n<p class=\"summary\">";
        std::string text = summaryText(summary);
        const std::size_t end = text.find('\n');
        out << escaped(text.substr(0, end)) << "</p>\n";
        for (const std::string& warning : summary.warnings)
            out << "<p class=\"warning\">warning: " << escaped(warning) << "</p>\n";
        if (!summary.skipped.empty()) {
            out << "<details><summary>skipped entries</summary><ul>\n";
            for (const SkippedEntry& skip : summary.skipped)
                out << "<li>entry " << skip.number << ": " << escaped(skip.reason) << "</li>\n";
            out << "</ul></details>\n";
        }
        out << "</body></html>\n" << std::flush;
    }

private:
    std::ostream& out;
};

} // namespace

std::unique_ptr<SessionView> makeHtmlReport(std::ostream& out, const std::string& title) {
    return std::make_unique<HtmlReport>(out, title);
}

} // namespace zuvocli
