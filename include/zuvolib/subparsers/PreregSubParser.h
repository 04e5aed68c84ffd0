// Pre-registration response: the registration code to show the user.
#ifndef ZUVOLIB_SUBPARSERS_PREREGSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_PREREGSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/subparsers/BufferedSubParser.h"

#include <string>

namespace velmora {
namespace zuvolib {

/// The pre-registration response.
struct PreregResponseData : ResponseData {
    std::string regCode;   ///< "regcode", as written
    int retryInterval = 0; ///< "retryinterval"
    int totalTime = 0;     ///< "totaltime"
};

/// Reads a pre-registration response into a `PreregResponseData`: the
/// header as `ParentParser` does, and "regcode", "retryinterval" and
/// "totaltime", each written directly inside "result". Elements the
/// document leaves out keep the record's values. See `ParentParser::parse`
/// for results and exceptions.
class ZUVO_API PreregSubParser : public BufferedSubParser {
public:
    enum OwnTagType : unsigned int { TAG_REGCODE = 31, TAG_RETRYINTERVAL, TAG_TOTALTIME };

    /// Keeps references to `expat` and `responseData`; both must outlive it.
    PreregSubParser(Expat& expat, PreregResponseData& responseData);

    const char* getParserName() const override { return "PreregSubParser"; }

protected:
    bool canParseResultSubTag(unsigned int tagType) const override;
    bool onResultSubTagEndEvent(unsigned int tagType, const std::string& name) override;

private:
    PreregResponseData& data;
};

} // namespace zuvolib
} // namespace velmora

#endif
