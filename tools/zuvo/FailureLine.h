// The one-line form of a failed response parse, as the tool prints it.
#ifndef ZUVO_TOOL_FAILURELINE_H
#define ZUVO_TOOL_FAILURELINE_H

#include <zuvolib/parse/ParseFailure.h>

#include <string>

namespace zuvocli {

/// The name an input goes by in failure lines: "<stdin>" for "-", else the
/// path as given.
std::string inputDisplayName(const std::string& input);

/// "NAME:LINE:COLUMN: what went wrong (open: innermost ... <start>)", e.g.
/// "response.xml:12:7: mismatched end tag 'cdn' in AuthSubParser (open: cdns
/// authorization result response <start>)". Lines and columns count from 1,
/// as editors and compilers count them. No trailing newline.
std::string failureLine(const std::string& inputName,
                        const velmora::zuvolib::ParseFailure& failure);

} // namespace zuvocli

#endif
