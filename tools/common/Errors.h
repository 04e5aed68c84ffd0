// The common room: what every other room of the tool shares (these errors
// and exit codes, reading inputs, keys and cipher contexts, payload text,
// running a response parser and its one-line failure). It uses only the
// library and its platform libraries.
//
// The two kinds of failure the tool reports, and the exit codes they map to.
#ifndef ZUVO_TOOL_ERRORS_H
#define ZUVO_TOOL_ERRORS_H

#include <stdexcept>
#include <string>

namespace zuvocli {

/// Exit codes: success, a rejected document or payload, a usage error.
enum ExitCode { EXIT_OK = 0, EXIT_REJECTED = 1, EXIT_USAGE = 2 };

/// Bad input from the user: unknown message or field, wrong JSON type,
/// invalid key, unreadable file. Exits with EXIT_USAGE.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& message) : std::runtime_error(message) {}
};

/// A document or payload that the library or the cipher refused. `what()` is
/// a one-line summary; `details` holds the library's own report (possibly
/// several lines, possibly empty). Exits with EXIT_REJECTED.
class RejectedError : public std::runtime_error {
public:
    explicit RejectedError(const std::string& message, std::string details = std::string())
        : std::runtime_error(message), details(std::move(details)) {}
    std::string details;
};

} // namespace zuvocli

#endif
