// Every request message with one realistic record, then edge records (extreme
// numbers, empty lists and fields, profiles without an identifier, each kind
// of registration and renewal): the whole document with and without
// encryption, the empty-context check, and an independent XML reader's
// verdict on the result.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>

#include <functional>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

typedef std::function<std::string(const Context&)> Build;

/// Builds `data`, with the rc text when one is given.
template <typename T, typename... Rc> Build build(const T& data, const Rc&... rc) {
    return [data, rc...](const Context& c) {
        return RequestBuilder::buildRequest(data, c, std::string(rc)...);
    };
}

ContentProfile profile(int value) {
    return static_cast<ContentProfile>(value);
}

const std::string RC = "rc[version=1]=rc-1";
// An rc that is already escaped text goes in as it is.
const std::string RC_AMP = "rc[version=1]=r&#38;c";

const struct Message {
    const char* name;
    Build build;
    std::string message; ///< the message element; "@" stands for the payload text
    std::string inner;   ///< the payload's inner document; empty when there is none
} MESSAGES[] = {
    // Entries repeat, and those without an identifier give empty elements.
    {"authorization",
     build(AuthRequestData{
         header(),
         70143,
         2,
         {PROFILE_PLAYREADY_H264MPL31_PIFF, profile(10), PROFILE_PLAYREADY_H264MPL31_PIFF},
         {PROFILE_DDPLUS_5_1_PIFF, profile(19), profile(-1)},
         {profile(21), PROFILE_WMDRM10_WMV3_ASF}}),
     "authorization(movieid=70143 trackid=2 contentprofiles(videoprofiles("
     "videoprofile=playready-h264mpl31-piff videoprofile videoprofile=playready-h264mpl31-piff) "
     "audioprofiles(audioprofile=ddplus-5.1-piff audioprofile audioprofile) "
     "timedtextprofiles(timedtextprofile timedtextprofile=wmdrm10-wmv3-asf)))",
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

    {"authorization, empty lists",
     build(AuthRequestData{header(), -1, -2147483647 - 1, {}, {}, {}}),
     "authorization(movieid=-1 trackid=-2147483648 contentprofiles("
     "videoprofiles audioprofiles timedtextprofiles))",
     ""},
    // Only type 0 sends the code.
    {"registration, empty code", build(RegRequestData{header(), 0, ""}, "r&#38;c"),
     "register(rendezvousreg(regcode payload=@))", "registrationdata(" + RC_AMP + ")"},
    {"registration, type 1", build(RegRequestData{header(), 1, "ignored"}, "r&#38;c"),
     "register(shopperidreg(payload=@))", "registrationdata(" + RC_AMP + ")"},
    {"registration, type -1", build(RegRequestData{header(), -1, "ignored"}, "r&#38;c"),
     "register(shopperidreg(payload=@))", "registrationdata(" + RC_AMP + ")"},
    {"token registration, no cookies", build(TokenRegisterRequestData{header(), {}}, "r&#38;c"),
     "register(idcookiereg(payload=@))", "idcookieregdata(idcookies " + RC_AMP + ")"},
    // Each renewal type writes its root and only its own field.
    {"renewal, type 0", build(AuthrenewRequestData{header(), 0, "s-1", "n-1"}, "r&#38;c"),
     "authenticationrenewal(payload=@)", "stbrenew(" + RC_AMP + ")"},
    {"renewal, type 1", build(AuthrenewRequestData{header(), 1, "s-1", "n-1"}, "r&#38;c"),
     "authenticationrenewal(payload=@)", "shopperidrenew(" + RC_AMP + " shopperid=s-1)"},
    {"renewal, empty token", build(AuthrenewRequestData{header(), 3, "s-1", ""}, "r&#38;c"),
     "authenticationrenewal(payload=@)", "linkrenew(" + RC_AMP + " nastoken)"},
    // Only non-empty lists get a wrapper.
    {"play data, timed text only",
     build(PlaydataRequestData{header(), {}, 0, 0, 0, -5, {}, {}, {{"", -1}}}),
     "playdata(lticket payload=@)",
     "playdata(movieid=0 lamovietime=0 eventmovietime=-5 playbacktime(total=0 "
     "timedtextstreamplaytimes(streamplaytime(downloadableid playtime=-1))))"},
    {"log blob, any bytes",
     build(LogblobRequestData{header(), -3, std::string("a\0b\x80\xff\n", 6)}),
     "logblob(sequencenumber=-3 logdata=YQBigP8K)", ""},
    {"log blob, empty", build(LogblobRequestData{header(), 0, ""}),
     "logblob(sequencenumber=0 logdata)", ""},
    {"ecc link, empty", build(ECCLinkProRequestData{header(), ""}, ""),
     "ecclinkprovision(ecclinkprovisiondata(rc[version=1] nastoken))", ""},
    {"web api enrolment, empty", build(ActivateWebApiRequestData{header(), "", ""}),
     "webapienroll(payload=@)", "enrolldata(oauthrequesttoken oauthconsumerkey)"},
    {"web api proxy, empty", build(WebApiProxyRequestData{header(), ""}), "webapiproxy(url)", ""},
};

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

/// The independent reader's verdict: well-formed, namespaces included.
void expectWellFormed(const std::string& doc) {
    xmlParserCtxtPtr parser = xmlNewParserCtxt();
    xmlDocPtr tree = xmlCtxtReadMemory(parser, doc.data(), static_cast<int>(doc.size()),
                                       "request.xml", nullptr, XML_PARSE_NONET);
    EXPECT_TRUE(tree && parser->wellFormed && parser->nsWellFormed);
    if (tree)
        expectProtocolNamespace(xmlDocGetRootElement(tree), namespaceBase + PROTOCOL_VERSION);
    xmlFreeDoc(tree);
    xmlFreeParserCtxt(parser);
}

TEST(AllMessages, PlainDocumentsCarryBase64OfTheInnerDocument) {
    for (const Message& m : MESSAGES) {
        SCOPED_TRACE(m.name);
        const std::string doc = m.build(plainContext());
        EXPECT_EQ(doc, messageDocument(m.message, b64(xml(m.inner))));
        expectWellFormed(doc);
    }
}

TEST(AllMessages, EncryptionSealsHeaderThenPayloadAndEmptyContextIsRefused) {
    for (const Message& m : MESSAGES) {
        SCOPED_TRACE(m.name);
        RecordingContext* recorder = new RecordingContext;
        const Context context(recorder);
        const std::string doc = m.build(context);
        EXPECT_EQ(doc, messageDocument(m.message, "SEALED2", "SEALED1"));
        expectWellFormed(doc);
        std::vector<std::string> sealed = {timesDocument("1700000000", "42")};
        if (!m.inner.empty())
            sealed.push_back(xml(m.inner));
        EXPECT_EQ(recorder->plainTexts, sealed);
        EXPECT_THROW(m.build(Context()), ZuvoExceptionNoCipherContext);
    }
}

} // namespace
