// Provisioning and web API messages with empty fields.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(ProvisioningAndWebApi, EmptyFieldsGiveEmptyElements) {
    EXPECT_EQ(RequestBuilder::buildRequest(ECCLinkProRequestData{header(), ""}, plainContext(), ""),
              plainDocument("ecclinkprovision(ecclinkprovisiondata(rc[version=1] nastoken))"));
    EXPECT_EQ(RequestBuilder::buildRequest(WebApiProxyRequestData{header(), ""}, plainContext()),
              plainDocument("webapiproxy(url)"));
    const std::string enrol =
        RequestBuilder::buildRequest(ActivateWebApiRequestData{header(), "", ""}, plainContext());
    EXPECT_EQ(innerOf(enrol), xml("enrolldata(oauthrequesttoken oauthconsumerkey)"));
}

} // namespace
