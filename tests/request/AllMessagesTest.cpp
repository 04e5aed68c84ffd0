// Every request message with one realistic record: the whole document with
// and without encryption, the empty-context check, and an independent XML
// reader's verdict on the result.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <functional>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

typedef std::function<std::string(const Context&)> Build;

template <typename T> Build build(const T& data) {
    return [data](const Context& c) { return RequestBuilder::buildRequest(data, c); };
}

template <typename T> Build build(const T& data, const std::string& rc) {
    return [data, rc](const Context& c) { return RequestBuilder::buildRequest(data, c, rc); };
}

const std::string RC = "rc[version=1]=rc-1";

const struct Message {
    const char* name;
    Build build;
    std::string message; ///< the message element; "@" stands for the payload text
    std::string inner;   ///< the payload's inner document; empty when there is none
} MESSAGES[] = {
    {"authorization",
     build(AuthRequestData{header(),
                           70143,
                           2,
                           {PROFILE_PLAYREADY_H264MPL31_PIFF, PROFILE_PLAYREADY_H264HPL40_PIFF},
                           {PROFILE_DDPLUS_5_1_PIFF, PROFILE_HEAAC_2_PIFF},
                           {PROFILE_SIMPLESDH}}),
     "authorization(movieid=70143 trackid=2 contentprofiles(videoprofiles("
     "videoprofile=playready-h264mpl31-piff videoprofile=playready-h264hpl40-piff) audioprofiles("
     "audioprofile=ddplus-5.1-piff audioprofile=heaac-2-piff) "
     "timedtextprofiles(timedtextprofile=simplesdh)))",
     ""},
    {"registration", build(RegRequestData{header(), 0, "ABC123"}, "rc-1"),
     "register(rendezvousreg(regcode=ABC123 payload=@))", "registrationdata(" + RC + ")"},
    {"token registration",
     build(TokenRegisterRequestData{header(), {{"sid", "a1b2"}, {"pid", "c3d4"}}}, "rc-1"),
     "register(idcookiereg(payload=@))",
     "idcookieregdata(idcookies(idcookie(name=sid value=a1b2) idcookie(name=pid value=c3d4)) " +
         RC + ")"},
    {"renewal", build(AuthrenewRequestData{header(), 3, "unused", "nas-9"}, "rc-1"),
     "authenticationrenewal(payload=@)", "linkrenew(" + RC + " nastoken=nas-9)"},
    {"play data",
     build(PlaydataRequestData{header(),
                               {'L', 'T', '-', '0', '1'},
                               70143,
                               5400,
                               5100,
                               4800,
                               {{"v-1", 3000}, {"v-2", 2400}},
                               {{"a-1", 5400}},
                               {}}),
     "playdata(lticket=LT-01 payload=@)",
     "playdata(movieid=70143 lamovietime=5100 eventmovietime=4800 playbacktime(total=5400 "
     "videostreamplaytimes(streamplaytime(downloadableid=v-1 playtime=3000) "
     "streamplaytime(downloadableid=v-2 playtime=2400)) "
     "audiostreamplaytimes(streamplaytime(downloadableid=a-1 playtime=5400))))"},
    {"log blob", build(LogblobRequestData{header(), 7, "boot ok\n"}),
     "logblob(sequencenumber=7 logdata=Ym9vdCBvawo=)", ""},
    {"x509", build(X509ProRequestData{header()}, "rc-1"),
     "x509provision(provisiondata(" + RC + "))", ""},
    {"np ticket", build(NPTicketProRequestData{header()}, "rc-1"),
     "npticketprovision(provisiondata(" + RC + "))", ""},
    {"ecc link", build(ECCLinkProRequestData{header(), "nas-9"}, "rc-1"),
     "ecclinkprovision(ecclinkprovisiondata(" + RC + " nastoken=nas-9))", ""},
    {"web api enrolment", build(ActivateWebApiRequestData{header(), "tok", "key"}),
     "webapienroll(payload=@)", "enrolldata(oauthrequesttoken=tok oauthconsumerkey=key)"},
    {"web api proxy", build(WebApiProxyRequestData{header(), "/users/current?output=json"}),
     "webapiproxy(url=/users/current?output=json)", ""},
};

TEST(AllMessages, PlainDocumentsCarryBase64OfTheInnerDocument) {
    for (const Message& m : MESSAGES) {
        SCOPED_TRACE(m.name);
        const std::string doc = m.build(plainContext());
        EXPECT_EQ(doc, messageDocument(m.message, b64(xml(m.inner))));
        if (!m.inner.empty()) {
            EXPECT_EQ(innerOf(doc), xml(m.inner));
        }
    }
}

TEST(AllMessages, EncryptionSealsHeaderThenPayloadAndEmptyContextIsRefused) {
    for (const Message& m : MESSAGES) {
        SCOPED_TRACE(m.name);
        RecordingContext* recorder = new RecordingContext;
        const Context context(recorder);
        EXPECT_EQ(m.build(context), messageDocument(m.message, "SEALED2", "SEALED1"));
        std::vector<std::string> sealed = {timesDocument("1700000000", "42")};
        if (!m.inner.empty())
            sealed.push_back(xml(m.inner));
        EXPECT_EQ(recorder->plainTexts(), sealed);
        EXPECT_THROW(m.build(Context()), ZuvoExceptionNoCipherContext);
    }
}

// Every element is in the protocol namespace under the "zuvo" prefix.
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
    for (const Context& context : {plainContext(), Context(new RecordingContext)}) {
        for (const Message& m : MESSAGES) {
            SCOPED_TRACE(m.name);
            const std::string doc = m.build(context);
            xmlParserCtxtPtr parser = xmlNewParserCtxt();
            xmlDocPtr tree = xmlCtxtReadMemory(parser, doc.data(), static_cast<int>(doc.size()),
                                               "request.xml", nullptr, XML_PARSE_NONET);
            EXPECT_TRUE(tree && parser->wellFormed && parser->nsWellFormed);
            if (tree)
                expectProtocolNamespace(xmlDocGetRootElement(tree),
                                        namespaceBase + PROTOCOL_VERSION);
            xmlFreeDoc(tree);
            xmlFreeParserCtxt(parser);
        }
    }
}

} // namespace
