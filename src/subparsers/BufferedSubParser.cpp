// Result text gathered per element.

#include "zuvolib/subparsers/BufferedSubParser.h"

namespace velmora {
namespace zuvolib {

BufferedSubParser::BufferedSubParser(Expat& expat, ResponseData& responseData,
                                     const TagConfigTable* table, unsigned int count)
    : ParentParser(expat, responseData, table, count) {}

bool BufferedSubParser::onResultSubTagStartEvent(unsigned int parentTagType, unsigned int,
                                                 const std::string&,
                                                 const std::map<std::string, std::string>&) {
    // The buffer is empty whenever result mode begins, unless an earlier
    // document was rejected or failed part way.
    if (parentTagType == TAG_RESULT)
        text.clear();
    return true;
}

void BufferedSubParser::onResultSubDataEvent(unsigned int, const std::string& piece) {
    text += piece;
}

std::string BufferedSubParser::takeText() {
    std::string taken;
    taken.swap(text);
    return taken;
}

} // namespace zuvolib
} // namespace velmora
