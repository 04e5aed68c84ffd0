#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(Envelope, PingAndPreregWithBase64Payload) {
    // The extremes of the two times.
    const PingRequestData ping{{"4.2.1", "ui-7", 0, 4294967295u}};
    EXPECT_EQ(RequestBuilder::buildRequest(ping, plainContext()),
              messageDocument("ping", "", "", ping));
    // Empty versions give empty elements.
    EXPECT_EQ(RequestBuilder::buildRequest(PreregRequestData(), plainContext()),
              messageDocument("preregister", "", "", RequestData()));

    const std::string suffix = "/qrx/zuvo/";
    ASSERT_GE(namespaceBase.size(), suffix.size());
    EXPECT_EQ(namespaceBase.substr(namespaceBase.size() - suffix.size()), suffix);
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

} // namespace
