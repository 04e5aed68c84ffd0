// Registration forms, cookies and renewal types.

#include "request/MessageTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

const std::string RC = "1<zuvo:rc version=\"1\">r&#38;c</zuvo:rc>";

TEST(RegistrationRequest, TypeZeroSendsTheCodeAnyOtherTheSubscriberForm) {
    RegRequestData data = record<RegRequestData>();
    const std::string byCode = RequestBuilder::buildRequest(data, plainContext(), "r&#38;c");
    EXPECT_NE(byCode.find(lines({"2<zuvo:rendezvousreg>", "3<zuvo:regcode/>"})), std::string::npos);
    for (int type : {1, 7, -1}) {
        data.regType = type;
        data.regCode = "ignored";
        const std::string doc = RequestBuilder::buildRequest(data, plainContext(), "r&#38;c");
        const std::string inner = innerOf(doc);
        EXPECT_EQ(doc, plainDocument(lines({"1<zuvo:register>", "2<zuvo:shopperidreg>",
                                            "3<zuvo:payload>" + b64(inner) + "</zuvo:payload>",
                                            "2</zuvo:shopperidreg>", "1</zuvo:register>"})));
        EXPECT_EQ(inner, innerOf(byCode));
        EXPECT_EQ(inner, lines({"0<zuvo:registrationdata>", RC, "0</zuvo:registrationdata>"}));
    }
}

TEST(TokenRegisterRequest, NoCookiesLeavesAnEmptyListBeforeRc) {
    const std::string doc =
        RequestBuilder::buildRequest(TokenRegisterRequestData(), plainContext(), "r&#38;c");
    EXPECT_EQ(innerOf(doc), lines({"0<zuvo:idcookieregdata>", "1<zuvo:idcookies/>", RC,
                                   "0</zuvo:idcookieregdata>"}));
}

TEST(AuthrenewRequest, EachTypeWritesItsRootAndOnlyItsOwnField) {
    const struct {
        int type;
        std::string inner;
    } cases[] = {
        {0, lines({"0<zuvo:stbrenew>", RC, "0</zuvo:stbrenew>"})},
        {1, lines({"0<zuvo:shopperidrenew>", RC, "1<zuvo:shopperid>s-1</zuvo:shopperid>",
                   "0</zuvo:shopperidrenew>"})},
        {3, lines({"0<zuvo:linkrenew>", RC, "1<zuvo:nastoken/>", "0</zuvo:linkrenew>"})},
    };
    for (const auto& c : cases) {
        AuthrenewRequestData data;
        data.renewalType = c.type;
        data.shopperId = "s-1";
        data.nasToken = c.type == 3 ? "" : "n-1";
        EXPECT_EQ(innerOf(RequestBuilder::buildRequest(data, plainContext(), "r&#38;c")), c.inner)
            << c.type;
    }
}

TEST(AuthrenewRequest, UnknownTypeIsRefusedNamingTheValue) {
    for (int type : {2, -1, 4}) {
        AuthrenewRequestData data;
        data.renewalType = type;
        try {
            RequestBuilder::buildRequest(data, plainContext(), "rc");
            ADD_FAILURE() << "no exception for " << type;
        } catch (const std::invalid_argument& e) {
            EXPECT_NE(std::string(e.what()).find(" " + std::to_string(type) + " "),
                      std::string::npos)
                << e.what();
        }
        EXPECT_THROW(RequestBuilder::makeAuthrenewPayload(data, "rc", plainContext()),
                     std::invalid_argument);
    }
}

} // namespace
