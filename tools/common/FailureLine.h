// The one-line form of a failed response parse, as the tool prints it.
#ifndef ZUVO_TOOL_FAILURELINE_H
#define ZUVO_TOOL_FAILURELINE_H

#include <zuvolib/parse/ParseFailure.h>

#include <string>

namespace zuvocli {

/// "NAME:LINE:COLUMN: what went wrong[: cause] (open: innermost ... <start>)",
/// e.g. "response.xml:12:7: mismatched end tag 'cdn' in AuthSubParser (open:
/// cdns authorization result response <start>)". Lines and columns count
/// from 1, as editors and compilers count them. NAME is `input`, or
/// "<stdin>" for "-". `cause` says why a payload could not be opened. No
/// trailing newline.
std::string failureLine(const std::string& input, const velmora::zuvolib::ParseFailure& failure,
                        const std::string& cause = std::string());

} // namespace zuvocli

#endif
