// Eight threads build every request and read every kind of response at once,
// starting cold: no parser has been made in this process before the threads
// are released together, so the first use of the shared tag tables races.
// Each thread has its own records, parsers and cipher context; one more
// context serves all threads for building. What each thread produced is
// compared with the same work done again on one thread afterwards.
//
// This program holds this one test only, so that the start really is cold.

#include "subparsers/CatalogueDocs.h"

#include "ParseResponse.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <sstream>
#include <thread>

using namespace velmora::zuvolib;
using namespace zuvotest;
using zuvocli::PlainParser;

namespace {

const int THREADS = 8;
// memcheck runs one thread at a time, slowly: one round shows it the same code.
const int ROUNDS = std::getenv("ZUVO_UNDER_VALGRIND") ? 1 : 3;

// The text of a record: the fields each check compares, streamed in order.
template <typename... Fields> std::string digest(const Fields&... fields) {
    std::ostringstream out;
    ((out << fields << '|'), ...);
    return out.str();
}

std::string text(const std::vector<unsigned char>& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

std::string headerDigest(const ResponseData& r) {
    return digest(r.serverTime, r.clientTime, r.protocolVersion, r.method, r.success, r.code);
}

// ---- Requests -------------------------------------------------------------

// Every `buildRequest` overload with records that carry the thread's number.
std::vector<std::string> buildAll(int n, const Context& context) {
    const std::string id = std::to_string(n);
    const RequestData h{"sw-" + id, "ui-" + id, 1700000000u + n, 42u + n};
    const std::string rc = "rc-" + id;
    PlaydataRequestData play;
    static_cast<RequestData&>(play) = h;
    play.lticket = {'L', static_cast<unsigned char>('0' + n)};
    play.movieId = 7000 + n;
    play.totalPlaybackTime = 60 * n;
    play.videoStreamPlayTimes = {{"v-" + id, 30 * n}};
    play.audioStreamPlayTimes = {{"a-" + id, 31 * n}};
    return {
        RequestBuilder::buildRequest(PingRequestData{h}, context),
        RequestBuilder::buildRequest(PreregRequestData{h}, context),
        RequestBuilder::buildRequest(
            AuthRequestData{h, 7000 + n, n, {PROFILE_PLAYREADY_H264MPL30_PIFF}, {}, {}}, context),
        RequestBuilder::buildRequest(RegRequestData{h, 0, "RC" + id}, context, rc),
        RequestBuilder::buildRequest(TokenRegisterRequestData{h, {{"sid", id}}}, context, rc),
        RequestBuilder::buildRequest(AuthrenewRequestData{h, 3, "", "nas-" + id}, context, rc),
        RequestBuilder::buildRequest(play, context),
        RequestBuilder::buildRequest(LogblobRequestData{h, n, std::string("log\0", 4) + id},
                                     context),
        RequestBuilder::buildRequest(X509ProRequestData{h}, context, rc),
        RequestBuilder::buildRequest(NPTicketProRequestData{h}, context, rc),
        RequestBuilder::buildRequest(ECCLinkProRequestData{h, "nas-" + id}, context, rc),
        RequestBuilder::buildRequest(ActivateWebApiRequestData{h, "tok-" + id, "key-" + id},
                                     context),
        RequestBuilder::buildRequest(WebApiProxyRequestData{h, "/api/" + id}, context),
    };
}

// `document` with every payload that `context` opens replaced by its plain
// text; sealed text differs on every run (fresh nonces), plain text does not.
std::string opened(std::string document, const Context& context) {
    const std::string close = "</zuvo:payload>";
    for (std::size_t at = document.find("<zuvo:payload"); at != std::string::npos;
         at = document.find("<zuvo:payload", at + 1)) {
        const std::size_t from = document.find('>', at) + 1;
        const std::size_t to = document.find(close, from);
        const std::string sealed = document.substr(from, to - from);
        try {
            const std::string plain =
                text(context->decrypt(std::vector<unsigned char>(sealed.begin(), sealed.end())));
            document.replace(from, to - from, "[plain]" + plain);
        } catch (const std::runtime_error&) {
            // Not sealed: the log chunk is plain Base64.
        }
    }
    return document;
}

// ---- Responses ------------------------------------------------------------

typedef std::function<std::string(const std::string& doc, const Context&)> Reader;

/// A response document and what reads it into a digest.
struct Reading {
    std::string doc;
    Reader read;
};

// Parses with a parser of type P on its own handle: the record's digest, or
// the failure.
template <typename P, typename R> Reader reader(std::function<std::string(const R&)> fields) {
    return [fields](const std::string& doc, const Context& context) {
        ExpatParser expat;
        R record;
        P parser(expat, record);
        if (!parser.parse(doc, context))
            return std::string("rejected by ") + parser.getParserName();
        return headerDigest(record) + fields(record);
    };
}

std::string ticket(const std::string& id) {
    return "<zuvo:cticket expiration=\"189345600000" + id + "\">T-" + id +
           "</zuvo:cticket>\n<zuvo:rs>rs-" + id + "</zuvo:rs>\n";
}

template <typename R> std::string ticketFields(const R& r) {
    return digest(text(r.clientTicket), r.clientTicketExpiration, text(r.rsData));
}

template <typename R> std::string provisionFields(const R& r) {
    return text(r.provisionData);
}

// Every field of the catalogue, through the document writer.
std::string catalogueFields(const AuthResponseData& c) {
    return digest(text(c.movieTicket), c.movieTicketExpiration) + catalogueDoc(c, "");
}

std::string payloadFields(const PayloadDecryptor& p) {
    return digest(p.getValueString("zuvo:cticket"), p.getAttr("zuvo:cticket", "expiration"),
                  text(p.getValueUcVector("zuvo:rs")));
}

// One thread's response documents, sealed under its own context, each with
// its parser.
std::vector<Reading> responses(int n, const Context& context) {
    const std::string id = std::to_string(n);
    const std::string header =
        block(2, "status", el(3, "success", "true") + el(3, "code", id)) +
        el(2, "payload", seal(context, timesFragment(std::to_string(1000 + n), id)),
           " encrypted=\"true\"");
    const auto doc = [&header](const std::string& body) { return responseDoc(header, body); };
    const auto provision = [&](const char* kind) {
        return doc(block(2, "provisionresponsedata", el(3, "rs", kind + id)));
    };
    AuthResponseData catalogue = sampleCatalogue();
    catalogue.movieId = 7000 + n;
    catalogue.cdns[0].name = "cdn-" + id;
    catalogue.streamingParams[0].value = id;
    return {
        {responseDoc(header, "", " method=\"ping\""),
         reader<PlainParser, ResponseData>([](const ResponseData&) { return std::string(); })},
        {doc(el(2, "regcode", "RC" + id) + el(2, "retryinterval", id) +
             el(2, "totaltime", std::to_string(900 + n))),
         reader<PreregSubParser, PreregResponseData>([](const PreregResponseData& r) {
             return digest(r.regCode, r.retryInterval, r.totalTime);
         })},
        {doc(block(2, "registrationdata",
                   el(3, "userid", "u-" + id) + el(3, "userdescription", "Room " + id) +
                       el(3, "payload", seal(context, ticket(id))))),
         reader<RegSubParser, RegResponseData>([](const RegResponseData& r) {
             return digest(r.userId, r.userDescription) + ticketFields(r);
         })},
        {doc(block(2, "authenticationrenewal", el(3, "payload", seal(context, ticket("9" + id))))),
         reader<AuthrenewSubParser, AuthrenewResponseData>(ticketFields<AuthrenewResponseData>)},
        {provision("x509-"),
         reader<X509ProSubParser, X509ProResponseData>(provisionFields<X509ProResponseData>)},
        {provision("ecc-"), reader<ECCLinkProSubParser, ECCLinkProResponseData>(
                                provisionFields<ECCLinkProResponseData>)},
        {provision("np-"), reader<NPTicketProSubParser, NPTicketProResponseData>(
                               provisionFields<NPTicketProResponseData>)},
        {doc(block(2, "webapiproxy", el(3, "httpbody", "{\"n\":" + id + "}"))),
         reader<WebApiProxySubParser, WebApiProxyResponseData>(
             [](const WebApiProxyResponseData& r) { return r.httpBody; })},
        {catalogueDoc(catalogue, seal(context, ticketFragment("M-" + id, "77" + id))),
         reader<AuthSubParser, AuthResponseData>(catalogueFields)},
        {seal(context, ticket(id)),
         [](const std::string& d, const Context& c) {
             return payloadFields(PayloadDecryptor(c, d, true));
         }},
        {base64(ticket("5" + id)),
         [](const std::string& d, const Context&) {
             return payloadFields(PayloadDecryptor(Context(), d, false));
         }},
        {"<a n='" + id + "'>A" + id + "</a><b>B" + id + "</b>",
         [](const std::string& d, const Context&) {
             SimpleParser fragment;
             fragment.parse(d);
             return digest(fragment.getValue("a"), fragment.getAttr("a", "n"),
                           fragment.getValue("b"));
         }},
    };
}

// Every response parser on one thread's documents.
std::vector<std::string> readAll(const std::vector<Reading>& readings, const Context& context) {
    std::vector<std::string> out;
    for (const Reading& r : readings)
        out.push_back(r.read(r.doc, context));
    return out;
}

// ---- The run --------------------------------------------------------------

// Holds the threads until all have arrived, then lets them go together.
class StartGate {
public:
    explicit StartGate(int parties) : waiting(parties) {}
    void arriveAndWait() {
        std::unique_lock<std::mutex> lock(mutex);
        if (--waiting == 0)
            opened.notify_all();
        opened.wait(lock, [this] { return waiting == 0; });
    }

private:
    std::mutex mutex;
    std::condition_variable opened;
    int waiting;
};

struct ThreadResult {
    std::vector<std::string> reads;       ///< per round, every parser's digest
    std::vector<std::string> ownBuilt;    ///< per round, every document, opened
    std::vector<std::string> sharedBuilt; ///< the same built with the shared context
    std::string failure;                  ///< an exception that escaped, if any
};

void append(std::vector<std::string>& to, const std::vector<std::string>& from) {
    to.insert(to.end(), from.begin(), from.end());
}

std::vector<std::string> openedAll(int n, const Context& context) {
    std::vector<std::string> documents = buildAll(n, context);
    for (std::string& d : documents)
        d = opened(d, context);
    return documents;
}

TEST(Threads, EveryBuilderAndParserOnEightThreadsFromAColdStart) {
    const Context shared = keyedContext(0xee);
    std::vector<Context> own;
    std::vector<std::vector<Reading>> docs;
    for (int n = 0; n < THREADS; ++n) {
        own.push_back(keyedContext(static_cast<unsigned char>(n + 1)));
        docs.push_back(responses(n, own[n]));
    }

    std::vector<ThreadResult> results(THREADS);
    StartGate gate(THREADS);
    std::vector<std::thread> threads;
    for (int n = 0; n < THREADS; ++n) {
        threads.emplace_back([&, n] {
            ThreadResult& r = results[n];
            gate.arriveAndWait();
            try {
                for (int round = 0; round < ROUNDS; ++round) {
                    append(r.reads, readAll(docs[n], own[n]));
                    append(r.ownBuilt, openedAll(n, own[n]));
                    append(r.sharedBuilt, openedAll(n, shared));
                }
            } catch (const std::exception& e) {
                r.failure = e.what();
            }
        });
    }
    for (std::thread& t : threads)
        t.join();

    for (int n = 0; n < THREADS; ++n) {
        SCOPED_TRACE("thread " + std::to_string(n));
        const ThreadResult& r = results[n];
        ASSERT_EQ(r.failure, "");
        // The same work on this thread alone, now that everything is warm.
        const std::vector<std::string> reads = readAll(docs[n], own[n]);
        const std::vector<std::string> built = openedAll(n, own[n]);
        ASSERT_EQ(r.reads.size(), reads.size() * ROUNDS);
        ASSERT_EQ(r.ownBuilt.size(), built.size() * ROUNDS);
        for (std::size_t i = 0; i < r.reads.size(); ++i)
            EXPECT_EQ(r.reads[i], reads[i % reads.size()]) << "parser " << i % reads.size();
        for (std::size_t i = 0; i < r.ownBuilt.size(); ++i) {
            EXPECT_EQ(r.ownBuilt[i], built[i % built.size()]) << "request " << i % built.size();
            EXPECT_EQ(r.sharedBuilt[i], built[i % built.size()]) << "request " << i % built.size();
        }

        // The single-threaded reference itself reads what was written.
        const std::string id = std::to_string(n);
        EXPECT_EQ(reads[0], digest(1000 + n, n, "2.7", "ping", 1, n));
        EXPECT_EQ(reads[1],
                  digest(1000 + n, n, "2.7", "call", 1, n) + digest("RC" + id, n, 900 + n));
        EXPECT_NE(reads[8].find(digest("M-" + id, "77" + id)), std::string::npos) << reads[8];
        EXPECT_NE(reads[8].find("<zuvo:name>cdn-" + id + "<"), std::string::npos) << reads[8];
        EXPECT_EQ(reads[9], digest("T-" + id, "189345600000" + id, "rs-" + id));
        EXPECT_NE(built[3].find("[plain]<zuvo:registrationdata>"), std::string::npos) << built[3];
    }
}

} // namespace
