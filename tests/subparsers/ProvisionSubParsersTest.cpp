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
        Harness<P, R> h;
        h.data.provisionData.assign(3, 'z');
        ASSERT_TRUE(h.parse(responseDoc(basicHeader(), block(2, "provisionresponsedata", c.body))));
        EXPECT_EQ(std::string(h.data.provisionData.begin(), h.data.provisionData.end()),
                  c.expected);
        EXPECT_EQ(h.data.serverTime, 1000u);
    }
    Harness<P, R> h;
    EXPECT_FALSE(h.parse(responseDoc("", el(2, "rs", "loose"), "")));
    EXPECT_EQ(h.out, rejection(name, "result", "response <start> "));
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
        Harness<WebApiProxySubParser, WebApiProxyResponseData> h;
        const std::string body =
            block(2, "webapiproxy", el(3, "httpbody", "old") + el(3, "httpbody", c[0]));
        ASSERT_TRUE(h.parse(responseDoc(basicHeader(), body)));
        EXPECT_EQ(h.data.httpBody,
                  std::string("<zuvo:httpbody><![CDATA[") + c[1] + "]]></zuvo:httpbody>");
        EXPECT_EQ(h.data.clientTime, 2000u);
    }
}

} // namespace
