// Registration forms, cookies and renewal types.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const std::string RC = "rc[version=1]=r&#38;c";

TEST(RegistrationRequest, OnlyTypeZeroSendsTheCode) {
    const std::string inner = xml("registrationdata(" + RC + ")");
    const std::string byCode =
        RequestBuilder::buildRequest(RegRequestData{header(), 0, ""}, plainContext(), "r&#38;c");
    EXPECT_EQ(byCode, plainDocument("register(rendezvousreg(regcode payload=@))", b64(inner)));
    for (int type : {1, 7, -1}) {
        const RegRequestData data{header(), type, "ignored"};
        EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext(), "r&#38;c"),
                  plainDocument("register(shopperidreg(payload=@))", b64(inner)))
            << type;
    }
}

TEST(TokenRegisterRequest, NoCookiesLeavesAnEmptyListBeforeRc) {
    const std::string doc =
        RequestBuilder::buildRequest(TokenRegisterRequestData(), plainContext(), "r&#38;c");
    EXPECT_EQ(innerOf(doc), xml("idcookieregdata(idcookies " + RC + ")"));
}

TEST(AuthrenewRequest, EachTypeWritesItsRootAndOnlyItsOwnField) {
    const std::pair<int, std::string> cases[] = {
        {0, "stbrenew(" + RC + ")"},
        {1, "shopperidrenew(" + RC + " shopperid=s-1)"},
        {3, "linkrenew(" + RC + " nastoken)"},
    };
    for (const auto& c : cases) {
        const AuthrenewRequestData data{header(), c.first, "s-1", c.first == 3 ? "" : "n-1"};
        EXPECT_EQ(innerOf(RequestBuilder::buildRequest(data, plainContext(), "r&#38;c")),
                  xml(c.second));
    }
}

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

} // namespace
