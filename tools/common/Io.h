// Reading inputs: files, standard input, and small text helpers.
#ifndef ZUVO_TOOL_IO_H
#define ZUVO_TOOL_IO_H

#include <string>

namespace zuvocli {

/// The whole content of `path`, or of standard input when `path` is "-".
/// Throws UsageError naming the file when it cannot be read.
std::string readInput(const std::string& path);

/// `text` without leading and trailing ASCII white space.
std::string trim(const std::string& text);

} // namespace zuvocli

#endif
