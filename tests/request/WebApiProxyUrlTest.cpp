// A web API address with query separators, escaped by the caller, makes a
// well-formed proxy request that reads back as the same address.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

// The text of "zuvo:url" in `document`, read back with the library's own
// fragment reader (the declaration cannot stand inside its wrapper).
std::string urlOf(const std::string& document) {
    SimpleParser reader;
    reader.parse(document.substr(document.find("?>") + 2));
    return reader.getValue("zuvo:url");
}

TEST(WebApiProxyUrl, EscapedUrlIsWellFormedAndReadsBack) {
    const char* const urls[] = {
        "/v1/titles?genre=drama&sort=new&limit=10",
        "/search?q=a<b&c>d&quote=\"x\"",
        "/already?escaped=&amp;&x",
    };
    for (const std::string url : urls) {
        SCOPED_TRACE(url);
        const std::string document = RequestBuilder::buildRequest(
            WebApiProxyRequestData{header(), escapeXmlText(url)}, plainContext());
        EXPECT_EQ(urlOf(document), url);
        // Unescaped, the same address breaks the document.
        const std::string raw =
            RequestBuilder::buildRequest(WebApiProxyRequestData{header(), url}, plainContext());
        EXPECT_THROW(urlOf(raw), std::runtime_error);
    }
}

} // namespace
