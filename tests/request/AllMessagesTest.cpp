// Every request message with one realistic record: the whole document with
// and without encryption, the empty-context check, and an independent XML
// reader's verdict on the result.

#include "request/MessageTestSupport.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <functional>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

struct Message {
    const char* name;
    std::function<std::string(const Context&)> build;
    std::string body;  ///< message element lines; "@" stands for the payload text
    std::string inner; ///< the payload's inner document; empty when there is none
};

template <typename T> std::function<std::string(const Context&)> build(const T& data) {
    return [data](const Context& c) { return RequestBuilder::buildRequest(data, c); };
}

template <typename T>
std::function<std::string(const Context&)> build(const T& data, const std::string& rc) {
    return [data, rc](const Context& c) { return RequestBuilder::buildRequest(data, c, rc); };
}

std::vector<Message> messages() {
    auto auth = record<AuthRequestData>();
    auth.movieId = 70143;
    auth.trackId = 2;
    auth.videoProfiles = {PROFILE_PLAYREADY_H264MPL31_PIFF, PROFILE_PLAYREADY_H264HPL40_PIFF};
    auth.audioProfiles = {PROFILE_DDPLUS_5_1_PIFF, PROFILE_HEAAC_2_PIFF};
    auth.timedTextProfiles = {PROFILE_SIMPLESDH};
    auto reg = record<RegRequestData>();
    reg.regCode = "ABC123";
    auto tokenReg = record<TokenRegisterRequestData>();
    tokenReg.idCookies = {{"sid", "a1b2"}, {"pid", "c3d4"}};
    auto renew = record<AuthrenewRequestData>();
    renew.renewalType = AuthrenewRequestData::RENEWAL_LINK;
    renew.shopperId = "unused";
    renew.nasToken = "nas-9";
    auto play = record<PlaydataRequestData>();
    play.lticket = {'L', 'T', '-', '0', '1'};
    play.movieId = 70143;
    play.totalPlaybackTime = 5400;
    play.laMovieTime = 5100;
    play.eventMovieTime = 4800;
    play.videoStreamPlayTimes = {{"v-1", 3000}, {"v-2", 2400}};
    play.audioStreamPlayTimes = {{"a-1", 5400}};
    auto log = record<LogblobRequestData>();
    log.sequenceNumber = 7;
    log.logData = "boot ok\n";
    auto ecc = record<ECCLinkProRequestData>();
    ecc.nasToken = "nas-9";
    auto enroll = record<ActivateWebApiRequestData>();
    enroll.oauthRequestToken = "tok";
    enroll.oauthConsumerKey = "key";
    auto proxy = record<WebApiProxyRequestData>();
    proxy.url = "/users/current?output=json";
    const std::string rc = "1<zuvo:rc version=\"1\">rc-1</zuvo:rc>";

    return {
        {"ping", build(record<PingRequestData>()), lines({"1<zuvo:ping/>"}), ""},
        {"authorization", build(auth),
         lines(
             {"1<zuvo:authorization>", "2<zuvo:movieid>70143</zuvo:movieid>",
              "2<zuvo:trackid>2</zuvo:trackid>", "2<zuvo:contentprofiles>", "3<zuvo:videoprofiles>",
              "4<zuvo:videoprofile>playready-h264mpl31-piff</zuvo:videoprofile>",
              "4<zuvo:videoprofile>playready-h264hpl40-piff</zuvo:videoprofile>",
              "3</zuvo:videoprofiles>", "3<zuvo:audioprofiles>",
              "4<zuvo:audioprofile>ddplus-5.1-piff</zuvo:audioprofile>",
              "4<zuvo:audioprofile>heaac-2-piff</zuvo:audioprofile>", "3</zuvo:audioprofiles>",
              "3<zuvo:timedtextprofiles>",
              "4<zuvo:timedtextprofile>simplesdh</zuvo:timedtextprofile>",
              "3</zuvo:timedtextprofiles>", "2</zuvo:contentprofiles>", "1</zuvo:authorization>"}),
         ""},
        {"registration", build(reg, "rc-1"),
         lines({"1<zuvo:register>", "2<zuvo:rendezvousreg>", "3<zuvo:regcode>ABC123</zuvo:regcode>",
                "3<zuvo:payload>@</zuvo:payload>", "2</zuvo:rendezvousreg>", "1</zuvo:register>"}),
         lines({"0<zuvo:registrationdata>", rc, "0</zuvo:registrationdata>"})},
        {"token registration", build(tokenReg, "rc-1"),
         lines({"1<zuvo:register>", "2<zuvo:idcookiereg>", "3<zuvo:payload>@</zuvo:payload>",
                "2</zuvo:idcookiereg>", "1</zuvo:register>"}),
         lines({"0<zuvo:idcookieregdata>", "1<zuvo:idcookies>", "2<zuvo:idcookie>",
                "3<zuvo:name>sid</zuvo:name>", "3<zuvo:value>a1b2</zuvo:value>",
                "2</zuvo:idcookie>", "2<zuvo:idcookie>", "3<zuvo:name>pid</zuvo:name>",
                "3<zuvo:value>c3d4</zuvo:value>", "2</zuvo:idcookie>", "1</zuvo:idcookies>", rc,
                "0</zuvo:idcookieregdata>"})},
        {"renewal", build(renew, "rc-1"),
         lines({"1<zuvo:authenticationrenewal>", "2<zuvo:payload>@</zuvo:payload>",
                "1</zuvo:authenticationrenewal>"}),
         lines({"0<zuvo:linkrenew>", rc, "1<zuvo:nastoken>nas-9</zuvo:nastoken>",
                "0</zuvo:linkrenew>"})},
        {"play data", build(play),
         lines({"1<zuvo:playdata>", "2<zuvo:lticket>LT-01</zuvo:lticket>",
                "2<zuvo:payload>@</zuvo:payload>", "1</zuvo:playdata>"}),
         lines({"0<zuvo:playdata>",
                "1<zuvo:movieid>70143</zuvo:movieid>",
                "1<zuvo:lamovietime>5100</zuvo:lamovietime>",
                "1<zuvo:eventmovietime>4800</zuvo:eventmovietime>",
                "1<zuvo:playbacktime>",
                "2<zuvo:total>5400</zuvo:total>",
                "2<zuvo:videostreamplaytimes>",
                "3<zuvo:streamplaytime>",
                "4<zuvo:downloadableid>v-1</zuvo:downloadableid>",
                "4<zuvo:playtime>3000</zuvo:playtime>",
                "3</zuvo:streamplaytime>",
                "3<zuvo:streamplaytime>",
                "4<zuvo:downloadableid>v-2</zuvo:downloadableid>",
                "4<zuvo:playtime>2400</zuvo:playtime>",
                "3</zuvo:streamplaytime>",
                "2</zuvo:videostreamplaytimes>",
                "2<zuvo:audiostreamplaytimes>",
                "3<zuvo:streamplaytime>",
                "4<zuvo:downloadableid>a-1</zuvo:downloadableid>",
                "4<zuvo:playtime>5400</zuvo:playtime>",
                "3</zuvo:streamplaytime>",
                "2</zuvo:audiostreamplaytimes>",
                "1</zuvo:playbacktime>",
                "0</zuvo:playdata>"})},
        {"log blob", build(log),
         lines({"1<zuvo:logblob>", "2<zuvo:sequencenumber>7</zuvo:sequencenumber>",
                "2<zuvo:logdata>Ym9vdCBvawo=</zuvo:logdata>", "1</zuvo:logblob>"}),
         ""},
        {"x509", build(record<X509ProRequestData>(), "rc-1"),
         lines({"1<zuvo:x509provision>", "2<zuvo:provisiondata>", "3" + rc.substr(1),
                "2</zuvo:provisiondata>", "1</zuvo:x509provision>"}),
         ""},
        {"np ticket", build(record<NPTicketProRequestData>(), "rc-1"),
         lines({"1<zuvo:npticketprovision>", "2<zuvo:provisiondata>", "3" + rc.substr(1),
                "2</zuvo:provisiondata>", "1</zuvo:npticketprovision>"}),
         ""},
        {"ecc link", build(ecc, "rc-1"),
         lines({"1<zuvo:ecclinkprovision>", "2<zuvo:ecclinkprovisiondata>", "3" + rc.substr(1),
                "3<zuvo:nastoken>nas-9</zuvo:nastoken>", "2</zuvo:ecclinkprovisiondata>",
                "1</zuvo:ecclinkprovision>"}),
         ""},
        {"web api enrolment", build(enroll),
         lines(
             {"1<zuvo:webapienroll>", "2<zuvo:payload>@</zuvo:payload>", "1</zuvo:webapienroll>"}),
         lines({"0<zuvo:enrolldata>", "1<zuvo:oauthrequesttoken>tok</zuvo:oauthrequesttoken>",
                "1<zuvo:oauthconsumerkey>key</zuvo:oauthconsumerkey>", "0</zuvo:enrolldata>"})},
        {"web api proxy", build(proxy),
         lines({"1<zuvo:webapiproxy>", "2<zuvo:url>/users/current?output=json</zuvo:url>",
                "1</zuvo:webapiproxy>"}),
         ""},
    };
}

std::string withPayload(std::string body, const std::string& payload) {
    const std::size_t at = body.find('@');
    return at == std::string::npos ? body : body.replace(at, 1, payload);
}

TEST(AllMessages, PlainDocumentsCarryBase64OfTheInnerDocument) {
    for (const Message& m : messages()) {
        SCOPED_TRACE(m.name);
        EXPECT_EQ(m.build(plainContext()), plainDocument(withPayload(m.body, b64(m.inner))));
    }
}

TEST(AllMessages, EncryptionSealsHeaderThenPayloadAndMarksOnlyTheHeader) {
    for (const Message& m : messages()) {
        SCOPED_TRACE(m.name);
        RecordingContext* recorder = new RecordingContext;
        const Context context(recorder);
        const std::string doc = m.build(context);
        EXPECT_EQ(
            doc, requestDocument("5.1.0", "ui-3", true, "SEALED1", withPayload(m.body, "SEALED2")));
        std::vector<std::string> expected = {timesDocument("1700000000", "42")};
        if (!m.inner.empty())
            expected.push_back(m.inner);
        EXPECT_EQ(recorder->plainTexts(), expected);
    }
}

TEST(AllMessages, EmptyContextIsRejected) {
    for (const Message& m : messages())
        EXPECT_THROW(m.build(Context()), ZuvoExceptionNoCipherContext) << m.name;
}

// libxml2 as an independent reader: well-formed, namespace-well-formed, and
// every element in the protocol namespace under the "zuvo" prefix.
void expectProtocolNamespace(const xmlNode* node, const std::string& uri) {
    for (; node; node = node->next) {
        if (node->type != XML_ELEMENT_NODE)
            continue;
        ASSERT_TRUE(node->ns) << node->name;
        EXPECT_STREQ(reinterpret_cast<const char*>(node->ns->prefix), "zuvo");
        EXPECT_EQ(reinterpret_cast<const char*>(node->ns->href), uri);
        expectProtocolNamespace(node->children, uri);
    }
}

TEST(AllMessages, IndependentReaderAcceptsEveryDocument) {
    const std::string uri = namespaceBase + PROTOCOL_VERSION;
    for (const Context& context : {plainContext(), Context(new RecordingContext)}) {
        for (const Message& m : messages()) {
            SCOPED_TRACE(m.name);
            const std::string doc = m.build(context);
            xmlParserCtxtPtr parser = xmlNewParserCtxt();
            xmlDocPtr tree = xmlCtxtReadMemory(parser, doc.data(), static_cast<int>(doc.size()),
                                               "request.xml", nullptr, XML_PARSE_NONET);
            EXPECT_TRUE(tree && parser->wellFormed && parser->nsWellFormed);
            if (tree)
                expectProtocolNamespace(xmlDocGetRootElement(tree), uri);
            xmlFreeDoc(tree);
            xmlFreeParserCtxt(parser);
        }
    }
}

} // namespace
