// Common base of the sub-parsers that act on an element's text at its end.
#ifndef ZUVOLIB_SUBPARSERS_BUFFEREDSUBPARSER_H
#define ZUVOLIB_SUBPARSERS_BUFFEREDSUBPARSER_H

#include "zuvolib/export.h"
#include "zuvolib/parse/ParentParser.h"

#include <map>
#include <string>

namespace velmora {
namespace zuvolib {

/// A `ParentParser` whose result-mode text pieces are joined into one
/// buffer, taken (and so emptied) by the subclass at each element end. Text
/// written before a child element is therefore joined with the child's
/// text. Start events are accepted.
class ZUVO_API BufferedSubParser : public ParentParser {
protected:
    BufferedSubParser(Expat& expat, ResponseData& responseData, const TagConfigTable* table,
                      unsigned int count);

    /// Accepts every element.
    bool onResultSubTagStartEvent(unsigned int parentTagType, unsigned int tagType,
                                  const std::string& name,
                                  const std::map<std::string, std::string>& attributes) override;

    /// Appends `text` to the buffer.
    void onResultSubDataEvent(unsigned int tagType, const std::string& text) override;

    /// The text gathered since the last element end; empties the buffer.
    std::string takeText();

    /// The text gathered since the last element end, left in the buffer.
    const std::string& bufferedText() const { return text; }

    /// Empties the buffer, keeping its storage for the next element.
    void clearText() { text.clear(); }

private:
    std::string text;
};

} // namespace zuvolib
} // namespace velmora

#endif
