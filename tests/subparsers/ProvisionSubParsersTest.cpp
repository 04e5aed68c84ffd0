#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

// Checks one provisioning parser: "rs" text taken byte for byte, the last
// one winning, an empty one emptying; its name in reports.
template <typename P, typename R> void checkProvisioning(const char* name) {
    const struct {
        std::string body, expected;
    } cases[] = {
        {el(3, "rs", "TUlJQ2R6+/=="), "TUlJQ2R6+/=="},
        {el(3, "rs", "first") + el(3, "rs", "a&amp;b &lt;c&gt;"), "a&b <c>"},
        {el(3, "rs", ""), ""},
    };
    for (const auto& c : cases) {
        ExpatParser expat;
        R data;
        data.provisionData.assign(3, 'z');
        P parser(expat, data);
        ASSERT_TRUE(parser.parse(
            responseDoc(basicHeader(), block(2, "provisionresponsedata", c.body)), Context()));
        EXPECT_EQ(std::string(data.provisionData.begin(), data.provisionData.end()), c.expected);
        EXPECT_EQ(data.serverTime, 1000u);
    }
    CoutCapture capture;
    ExpatParser expat;
    R data;
    P parser(expat, data);
    EXPECT_FALSE(parser.parse(responseDoc("", el(2, "rs", "loose"), ""), Context()));
    EXPECT_EQ(capture.text(), rejection(name, "result", "response <start> "));
}

TEST(ProvisionSubParsers, ReadTheProvisionData) {
    checkProvisioning<X509ProSubParser, X509ProResponseData>("X509ProSubParser");
    checkProvisioning<ECCLinkProSubParser, ECCLinkProResponseData>("ECCLinkProSubParser");
    checkProvisioning<NPTicketProSubParser, NPTicketProResponseData>("NPTicketProSubParser");
}

TEST(WebApiProxySubParser, RewrapsTheBody) {
    const char* const cases[][2] = {
        {"<![CDATA[{\"name\":\"<v>\"}]]>", "{\"name\":\"<v>\"}"},
        {"", ""},
        {"a]]&gt;b", "a]]>b"},
        {"  spaced  ", "  spaced  "},
    };
    for (const auto& c : cases) {
        ExpatParser expat;
        WebApiProxyResponseData data;
        WebApiProxySubParser parser(expat, data);
        const std::string body =
            block(2, "webapiproxy", el(3, "httpbody", "old") + el(3, "httpbody", c[0]));
        ASSERT_TRUE(parser.parse(responseDoc(basicHeader(), body), Context()));
        EXPECT_EQ(data.httpBody,
                  std::string("<zuvo:httpbody><![CDATA[") + c[1] + "]]></zuvo:httpbody>");
        EXPECT_EQ(data.clientTime, 2000u);
    }
}

} // namespace
