// The command line room: main.cpp and one thin file per command, each
// reading its options and calling the rooms below it (http, server, capture,
// records, common). Nothing else in tools/ includes from here.
//
// The tool's commands. Each returns the exit code on success and throws
// UsageError or RejectedError on failure; main() turns those into one line
// on standard error and the matching exit code. Output is printed only once
// it is complete.
#ifndef ZUVO_TOOL_COMMANDS_H
#define ZUVO_TOOL_COMMANDS_H

#include <cstddef>
#include <string>
#include <vector>

namespace zuvocli {

/// The cipher key options shared by every command that touches payloads.
struct KeyOptions {
    std::string hex;  ///< --key: 64 hex digits
    std::string file; ///< --key-file: a file holding them
};

/// zuvo build MESSAGE: prints the request document.
struct BuildOptions {
    std::string message;
    std::string input; ///< --in: JSON record file, "-" for standard input
    std::vector<std::string> settings;
    std::string rc;
    bool rcGiven = false;
    KeyOptions key;
};
int runBuild(const BuildOptions& options);

/// zuvo parse TYPE [FILE|-]: prints the filled response record as JSON. A
/// rejected or malformed document is one line "FILE:LINE:COLUMN: reason"
/// (FILE "<stdin>" for standard input); `verbose` adds the library's report.
int runParse(const std::string& type, const std::string& input, const KeyOptions& key,
             bool verbose);

/// zuvo payload [--encrypted] [--encode] [TEXT|-]: prints the payload's
/// fragment, or with `encode` the payload text of a fragment.
struct PayloadOptions {
    bool encrypted = false;
    bool encode = false;
    std::string text;
    bool textGiven = false;
    KeyOptions key;
};
int runPayload(const PayloadOptions& options);

/// zuvo keygen: prints a fresh random key as hex.
int runKeygen();

/// zuvo demo: a whole scripted device session against a built-in server;
/// with `har` not empty, the session is also written there as a HAR file.
int runDemo(const std::string& har = std::string());

/// zuvo decode [FILE|-] | --har FILE: prints any protocol document, or every
/// protocol exchange of a captured session, as JSON.
struct DecodeOptions {
    std::string input = "-";
    std::string type; ///< --type: the response parser, instead of the body's
    std::string har;  ///< --har: a HAR file instead of one document
    bool jsonl = false;
    KeyOptions key;
};
int runDecode(const DecodeOptions& options);

/// zuvo serve: the scripted server over HTTP until SIGINT or SIGTERM.
struct ServeOptions {
    std::string listen = "127.0.0.1:8080"; ///< HOST:PORT; port 0 picks a free one
    std::string path = "/";                ///< the URL path requests are POSTed to
    KeyOptions key;
    std::string scenario;           ///< scenario JSON file
    std::string log;                ///< exchange lines here instead of standard error
    std::string har;                ///< the exchanges appended to a HAR file as they end
    std::size_t maxBody = 1 << 20;  ///< larger request bodies get 413
    unsigned int idleSeconds = 600; ///< device sessions unused this long are dropped
};
int runServe(const ServeOptions& options);

/// Names accepted by `zuvo parse`, for help texts.
std::string responseTypeNames();
/// Names accepted by `zuvo build`, for help texts.
std::string requestMessageNames();
/// One line per message with its record and own fields, for help texts.
std::string requestMessageTable();

} // namespace zuvocli

#endif
