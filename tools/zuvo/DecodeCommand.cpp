// zuvo decode [FILE|-] | --har FILE: protocol documents and captured
// sessions, as JSON, JSON lines, a table or an HTML report.
#include "zuvo/Commands.h"

#include "capture/Decode.h"
#include "capture/Exchange.h"
#include "capture/XmlTree.h"
#include "capture/report/Views.h"
#include "common/Errors.h"
#include "common/FailureLine.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "common/ParseResponse.h"
#include "records/JsonText.h"
#include "records/ResponseTypes.h"

#include <fstream>
#include <iostream>

namespace zuvocli {
namespace {

/// True when `exchange` passes the --message and --failed filters.
bool wanted(const DecodeOptions& options, const Json& exchange) {
    if (options.failed && exchange["outcome"] == OUTCOME_OK)
        return false;
    if (options.messages.empty())
        return true;
    const Json& message = exchange["message"];
    for (const std::string& name : options.messages) {
        if (message.is_string() && message.get<std::string>() == name)
            return true;
    }
    return false;
}

/// Every protocol exchange of the HAR file in start order, in the chosen
/// format; the JSON lines, the table and the HTML report as they decode.
int decodeHar(const DecodeOptions& options, const CipherContext& context) {
    const HarArchive archive(readInput(options.har), options.har);
    std::unique_ptr<SessionView> view;
    if (options.format == "table")
        view = makeTableView(std::cout);
    std::ofstream html;
    std::unique_ptr<SessionView> report;
    if (!options.html.empty()) {
        html.open(options.html, std::ios::binary | std::ios::trunc);
        if (!html)
            throw UsageError("cannot write '" + options.html + "'");
        const std::size_t slash = options.har.find_last_of('/');
        report = makeHtmlReport(html, slash == std::string::npos ? options.har
                                                                 : options.har.substr(slash + 1));
    }
    Json exchanges = Json::array();
    const SessionSummary summary =
        decodeSession(archive, context, context && context->encryptionEnabled, [&](const Json& x) {
            if (!wanted(options, x))
                return;
            if (report)
                report->exchange(x);
            if (view)
                view->exchange(x);
            else if (options.format == "jsonl")
                std::cout << compactJson(x) << '\n' << std::flush;
            else
                exchanges.push_back(x);
        });
    if (report)
        report->finish(summary, true);
    if (view) {
        view->finish(summary, options.verbose);
    } else if (options.format == "jsonl") {
        if (options.verbose) {
            for (const SkippedEntry& skip : summary.skipped)
                std::cerr << "zuvo: entry " << skip.number << " skipped: " << skip.reason << '\n';
        }
        std::cerr << "zuvo: " << summaryText(summary) << '\n';
    } else {
        Json session = {{"file", options.har}};
        session.update(summary.json());
        session["exchanges"] = std::move(exchanges);
        std::cout << dumpJson(session) << '\n';
        for (const std::string& warning : summary.warnings)
            std::cerr << "zuvo: warning: " << warning << '\n';
    }
    std::cout << std::flush;
    const std::size_t unread =
        summary.outcomes.count(OUTCOME_UNREADABLE) ? summary.outcomes.at(OUTCOME_UNREADABLE) : 0;
    if (unread > 0)
        throw RejectedError(std::to_string(unread) + " exchange" + (unread == 1 ? "" : "s") +
                            " could not be read completely (outcome \"unreadable\")");
    return EXIT_OK;
}

} // namespace

int runDecode(const DecodeOptions& options) {
    if (!options.type.empty())
        findResponseType(options.type);
    const CipherContext context = makeCipherContext(options.key.hex, options.key.file);
    if (options.harGiven) {
        if (options.har.empty())
            throw UsageError("--har needs a file name ('-' for standard input)");
        return decodeHar(options, context);
    }

    const std::string text = readInput(options.input);
    const std::string name = options.input == "-" ? "standard input" : "'" + options.input + "'";
    Json decoded;
    switch (documentKind(text)) {
    case DocumentKind::Request:
        if (!options.type.empty())
            throw UsageError("--type applies to responses; " + name + " holds a request");
        decoded = decodeRequest(text, context);
        break;
    case DocumentKind::Response: {
        try {
            decoded = decodeResponse(text, options.type, context);
        } catch (const ParseFailedError& e) {
            throw RejectedError(failureLine(options.input, e.failure, e.cause));
        }
        break;
    }
    case DocumentKind::Other: {
        // Name what is there: broken XML, or another document element.
        std::string element;
        try {
            element = readXml(text).name;
        } catch (const std::runtime_error& e) {
            throw RejectedError(name + " is not a protocol document: " + e.what());
        }
        throw RejectedError(name + " is not a protocol document: its document element is <" +
                            element + ">, neither <zuvo:request> nor <zuvo:response>");
    }
    }
    std::cout << dumpJson(decoded) << std::endl;
    if (decodeFailed(decoded))
        throw RejectedError("a payload of the request could not be opened (see \"error\" in the "
                            "output)");
    return EXIT_OK;
}

} // namespace zuvocli
