#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

// The extremes of the two times.
const PingRequestData PING{{"4.2.1", "ui-7", 0, 4294967295u}};

TEST(Envelope, PingAndPreregWithBase64Payload) {
    const PreregRequestData prereg{PING};
    const std::string payload = b64(timesDocument("0", "4294967295"));

    EXPECT_EQ(RequestBuilder::buildRequest(PING, plainContext()),
              requestDocument("4.2.1", "ui-7", false, payload, "\t<zuvo:ping/>\n"));
    EXPECT_EQ(RequestBuilder::buildRequest(prereg, plainContext()),
              requestDocument("4.2.1", "ui-7", false, payload, "\t<zuvo:preregister/>\n"));
}

TEST(Envelope, EmptyVersionsGiveSelfClosingElements) {
    const std::string doc = RequestBuilder::buildRequest(PreregRequestData(), plainContext());
    EXPECT_NE(doc.find("\t\t<zuvo:softwareversion/>\n\t\t<zuvo:uiversion/>\n"), std::string::npos);
}

// The other messages are checked with the same contexts in AllMessagesTest.
TEST(Envelope, EmptyContextIsRejectedBeforeBuilding) {
    const Context none;
    try {
        RequestBuilder::buildRequest(PingRequestData(), none);
        FAIL() << "no exception";
    } catch (const ZuvoExceptionNoCipherContext& e) {
        EXPECT_STREQ(e.what(), "No ZUVO cipher context");
    }
    EXPECT_THROW(RequestBuilder::buildRequest(PreregRequestData(), none),
                 ZuvoExceptionNoCipherContext);
    EXPECT_THROW(RequestBuilder::makeHeaderPayload(1, 2, none), std::runtime_error);
}

TEST(Envelope, NamespaceAndDeclaration) {
    EXPECT_EQ(PROTOCOL_VERSION, "2.7");
    const std::string suffix = "/qrx/zuvo/";
    ASSERT_GE(namespaceBase.size(), suffix.size());
    EXPECT_EQ(namespaceBase.substr(namespaceBase.size() - suffix.size()), suffix);
    TagBuilder b("zuvo:x");
    EXPECT_EQ(RequestBuilder::getXml(b), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<zuvo:x/>\n");
}

} // namespace
