// What some messages do with their fields beyond what the whole documents in
// AllMessagesTest show: unknown renewal types, ticket bytes copied as they
// are, and proxy addresses, which the caller escapes.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(AuthrenewRequest, UnknownTypeIsRefusedNamingTheValue) {
    for (int type : {2, -1, 4}) {
        const AuthrenewRequestData data{header(), type, "", ""};
        std::string what;
        try {
            RequestBuilder::buildRequest(data, plainContext(), "rc");
        } catch (const std::invalid_argument& e) {
            what = e.what();
        }
        EXPECT_NE(what.find(" " + std::to_string(type) + " "), std::string::npos) << what;
        EXPECT_THROW(RequestBuilder::makeAuthrenewPayload(data, "rc", plainContext()),
                     std::invalid_argument);
    }
}

TEST(PlaydataRequest, TicketBytesAreCopiedOneForOne) {
    PlaydataRequestData data;
    data.lticket = {0x00, 0x7f, 0x80, 0xff, '<'};
    static const char ticket[] = "\t\t<zuvo:lticket>\0\x7f\x80\xff<</zuvo:lticket>\n";
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext())
                  .find(std::string(ticket, sizeof ticket - 1)),
              std::string::npos);
}

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
