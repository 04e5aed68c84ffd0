// Provisioning and web API messages with empty and unescaped fields.

#include "request/MessageTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(ProvisioningRequest, EmptyFieldsGiveEmptyElementsAndTextIsNotEscaped) {
    EXPECT_EQ(RequestBuilder::buildRequest(record<ECCLinkProRequestData>(), plainContext(), ""),
              plainDocument(lines({"1<zuvo:ecclinkprovision>", "2<zuvo:ecclinkprovisiondata>",
                                   "3<zuvo:rc version=\"1\"/>", "3<zuvo:nastoken/>",
                                   "2</zuvo:ecclinkprovisiondata>", "1</zuvo:ecclinkprovision>"})));
    const std::string doc =
        RequestBuilder::buildRequest(X509ProRequestData(), plainContext(), "a&b<c");
    EXPECT_NE(doc.find(">a&b<c</zuvo:rc>"), std::string::npos);
}

TEST(WebApiRequest, EmptyEnrolmentKeepsBothElementsInOrder) {
    const std::string doc =
        RequestBuilder::buildRequest(ActivateWebApiRequestData(), plainContext());
    EXPECT_EQ(innerOf(doc), lines({"0<zuvo:enrolldata>", "1<zuvo:oauthrequesttoken/>",
                                   "1<zuvo:oauthconsumerkey/>", "0</zuvo:enrolldata>"}));
}

TEST(WebApiRequest, ProxyUrlIsWrittenByteForByte) {
    WebApiProxyRequestData data;
    data.url = "/catalog?a=1&b=2";
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext())
                  .find("\t\t<zuvo:url>/catalog?a=1&b=2</zuvo:url>\n"),
              std::string::npos);
    data.url.clear();
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext()).find("\t\t<zuvo:url/>\n"),
              std::string::npos);
}

} // namespace
