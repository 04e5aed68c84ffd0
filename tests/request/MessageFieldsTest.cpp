// What each message does with its own fields beyond the common shape:
// profile lists, registration forms and renewal types, play data and log
// bytes, empty provisioning and web API fields, escaped proxy addresses.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(AuthorizationRequest, EmptyListsStillWriteTheirWrappers) {
    const AuthRequestData data{header(), -1, -2147483647 - 1, {}, {}, {}};
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              messageDocument("authorization(movieid=-1 trackid=-2147483648 contentprofiles("
                              "videoprofiles audioprofiles timedtextprofiles))"));
}

TEST(AuthorizationRequest, EveryEntryGetsAnElementEmptyWithoutIdentifier) {
    const auto p = [](int value) { return static_cast<ContentProfile>(value); };
    const AuthRequestData data{header(), 1, 2, {p(3), p(10), p(3)}, {p(19), p(-1)}, {p(21), p(0)}};
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              messageDocument("authorization(movieid=1 trackid=2 contentprofiles("
                              "videoprofiles(videoprofile=bd-h264-m2ts videoprofile "
                              "videoprofile=bd-h264-m2ts) audioprofiles(audioprofile audioprofile) "
                              "timedtextprofiles(timedtextprofile "
                              "timedtextprofile=wmdrm10-wmv3-asf)))"));
}

const std::string RC = "rc[version=1]=r&#38;c";

TEST(RegistrationRequest, OnlyTypeZeroSendsTheCode) {
    const std::string inner = xml("registrationdata(" + RC + ")");
    const std::string byCode =
        RequestBuilder::buildRequest(RegRequestData{header(), 0, ""}, plainContext(), "r&#38;c");
    EXPECT_EQ(byCode, messageDocument("register(rendezvousreg(regcode payload=@))", b64(inner)));
    for (int type : {1, 7, -1}) {
        const RegRequestData data{header(), type, "ignored"};
        EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext(), "r&#38;c"),
                  messageDocument("register(shopperidreg(payload=@))", b64(inner)))
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

TEST(PlaydataRequest, TicketBytesAreCopiedOneForOne) {
    PlaydataRequestData data;
    data.lticket = {0x00, 0x7f, 0x80, 0xff, '<'};
    static const char ticket[] = "\t\t<zuvo:lticket>\0\x7f\x80\xff<</zuvo:lticket>\n";
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext())
                  .find(std::string(ticket, sizeof ticket - 1)),
              std::string::npos);
}

TEST(PlaydataRequest, OnlyNonEmptyListsGetAWrapper) {
    PlaydataRequestData data{header(), {}, 0, 0, 0, -5, {}, {}, {}};
    const std::string head =
        "playdata(movieid=0 lamovietime=0 eventmovietime=-5 playbacktime(total=0";
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              messageDocument("playdata(lticket payload=@)", b64(xml(head + "))"))));
    data.timedTextStreamPlayTimes = {{"", -1}};
    EXPECT_EQ(
        innerOf(RequestBuilder::buildRequest(data, plainContext())),
        xml(head + " timedtextstreamplaytimes(streamplaytime(downloadableid playtime=-1))))"));
}

TEST(LogblobRequest, AnyBytesSurviveAndEmptyGivesEmptyElement) {
    const std::string log("a\0b\x80\xff\n", 6);
    EXPECT_EQ(RequestBuilder::buildRequest(LogblobRequestData{header(), -3, log}, plainContext()),
              messageDocument("logblob(sequencenumber=-3 logdata=" + b64(log) + ")"));
    EXPECT_EQ(RequestBuilder::buildRequest(LogblobRequestData{header(), 0, ""}, plainContext()),
              messageDocument("logblob(sequencenumber=0 logdata)"));
}

TEST(ProvisioningAndWebApi, EmptyFieldsGiveEmptyElements) {
    EXPECT_EQ(RequestBuilder::buildRequest(ECCLinkProRequestData{header(), ""}, plainContext(), ""),
              messageDocument("ecclinkprovision(ecclinkprovisiondata(rc[version=1] nastoken))"));
    EXPECT_EQ(RequestBuilder::buildRequest(WebApiProxyRequestData{header(), ""}, plainContext()),
              messageDocument("webapiproxy(url)"));
    const std::string enrol =
        RequestBuilder::buildRequest(ActivateWebApiRequestData{header(), "", ""}, plainContext());
    EXPECT_EQ(innerOf(enrol), xml("enrolldata(oauthrequesttoken oauthconsumerkey)"));
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
