// Eight threads build every request and read every kind of response at once,
// starting cold: no parser has been made in this process before the threads
// are released together, so the first use of the shared tag tables races.
// Each thread has its own records, parsers and cipher context; one more
// context serves all threads for building. What each thread produced is
// compared with the same work done again on one thread afterwards.
//
// This program holds this one test only, so that the start really is cold.

#include "subparsers/CatalogueDocs.h"

#include "common/ParseResponse.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <future>
#include <sstream>
#include <thread>
#include <utility>

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

// ---- Requests -------------------------------------------------------------

// Every `buildRequest` overload with records that carry the thread's number.
std::vector<std::string> buildAll(int n, const Context& context) {
    const std::string id = std::to_string(n);
    const RequestData h{"sw-" + id, "ui-" + id, 1700000000u + n, 42u + n};
    const std::string rc = "rc-" + id;
    const unsigned char digit = static_cast<unsigned char>('0' + n);
    const PlaydataRequestData play{
        h, {'L', digit}, 7000 + n, 60 * n, 0, 0, {{"v-" + id, 30 * n}}, {{"a-" + id, 31 * n}}, {}};
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
    for (std::size_t at = 0; (at = document.find("<zuvo:payload", at)) != std::string::npos; ++at) {
        const std::size_t from = document.find('>', at) + 1;
        const std::size_t to = document.find("</zuvo:payload>", from);
        const std::string sealed = document.substr(from, to - from);
        try {
            const std::vector<unsigned char> plain =
                context->decrypt(std::vector<unsigned char>(sealed.begin(), sealed.end()));
            document.replace(from, to - from, "[plain]" + text(plain));
        } catch (const std::runtime_error&) {
            // Not sealed: the log chunk is plain Base64.
        }
    }
    return document;
}

// ---- Responses ------------------------------------------------------------

typedef std::function<std::string(const std::string& doc, const Context&)> Reader;

/// A response document and what reads it into a digest.
typedef std::pair<std::string, Reader> Reading;

// Parses with a parser of type P on its own handle: the record's digest, or
// the failure.
template <typename P, typename R> Reader reader(std::function<std::string(const R&)> fields) {
    return [fields](const std::string& doc, const Context& context) {
        ExpatParser expat;
        R record;
        P parser(expat, record);
        if (!parser.parse(doc, context))
            return std::string("rejected by ") + parser.getParserName();
        return digest(record.serverTime, record.clientTime, record.protocolVersion, record.method,
                      record.success, record.code) +
               fields(record);
    };
}

std::string ticket(const std::string& id) {
    return "<zuvo:cticket expiration=\"189345600000" + id + "\">T-" + id +
           "</zuvo:cticket>\n<zuvo:rs>rs-" + id + "</zuvo:rs>\n";
}

const auto ticketFields = [](const auto& r) {
    return digest(text(r.clientTicket), r.clientTicketExpiration, text(r.rsData));
};
const auto provisionFields = [](const auto& r) { return text(r.provisionData); };

// The payload reader, on sealed or plain text: the ticket's fields.
Reader payloadReader(bool encrypted) {
    return [encrypted](const std::string& doc, const Context& context) {
        const PayloadDecryptor p(encrypted ? context : Context(), doc, encrypted);
        return digest(p.getValueString("zuvo:cticket"), p.getAttr("zuvo:cticket", "expiration"),
                      text(p.getValueUcVector("zuvo:rs")));
    };
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
         reader<PlainParser, ResponseData>([](const auto&) { return std::string(); })},
        {doc(el(2, "regcode", "RC" + id) + el(2, "retryinterval", id) +
             el(2, "totaltime", std::to_string(900 + n))),
         reader<PreregSubParser, PreregResponseData>(
             [](const auto& r) { return digest(r.regCode, r.retryInterval, r.totalTime); })},
        {doc(block(2, "registrationdata",
                   el(3, "userid", "u-" + id) + el(3, "userdescription", "Room " + id) +
                       el(3, "payload", seal(context, ticket(id))))),
         reader<RegSubParser, RegResponseData>(
             [](const auto& r) { return digest(r.userId, r.userDescription) + ticketFields(r); })},
        {doc(block(2, "authenticationrenewal", el(3, "payload", seal(context, ticket("9" + id))))),
         reader<AuthrenewSubParser, AuthrenewResponseData>(ticketFields)},
        {provision("x509-"), reader<X509ProSubParser, X509ProResponseData>(provisionFields)},
        {provision("ecc-"), reader<ECCLinkProSubParser, ECCLinkProResponseData>(provisionFields)},
        {provision("np-"), reader<NPTicketProSubParser, NPTicketProResponseData>(provisionFields)},
        {doc(block(2, "webapiproxy", el(3, "httpbody", "{\"n\":" + id + "}"))),
         reader<WebApiProxySubParser, WebApiProxyResponseData>(
             [](const auto& r) { return r.httpBody; })},
        {catalogueDoc(catalogue, seal(context, ticketFragment("M-" + id, "77" + id))),
         reader<AuthSubParser, AuthResponseData>([](const auto& c) {
             // Every field of the catalogue, through the document writer.
             return digest(text(c.movieTicket), c.movieTicketExpiration) + catalogueDoc(c, "");
         })},
        {seal(context, ticket(id)), payloadReader(true)},
        {base64(ticket("5" + id)), payloadReader(false)},
    };
}

// One round of thread `n`'s work: every parser's digest, then every request
// opened, built with the thread's own context and then with `building`.
std::vector<std::string> round(int n, const std::vector<Reading>& readings, const Context& own,
                               const Context& building) {
    std::vector<std::string> out;
    for (const Reading& r : readings)
        out.push_back(r.second(r.first, own));
    for (const Context* context : {&own, &building}) {
        for (const std::string& document : buildAll(n, *context))
            out.push_back(opened(document, *context));
    }
    return out;
}

TEST(Threads, EveryBuilderAndParserOnEightThreadsFromAColdStart) {
    const Context shared = keyedContext(0xee);
    std::vector<Context> own;
    std::vector<std::vector<Reading>> docs;
    for (int n = 0; n < THREADS; ++n) {
        own.push_back(keyedContext(static_cast<unsigned char>(n + 1)));
        docs.push_back(responses(n, own[n]));
    }

    // The threads are released together once all have started.
    std::atomic<int> started{0};
    std::promise<void> release;
    const std::shared_future<void> go = release.get_future().share();
    std::vector<std::vector<std::string>> results(THREADS);
    std::vector<std::string> failures(THREADS); // an exception that escaped
    std::vector<std::thread> threads;
    for (int n = 0; n < THREADS; ++n) {
        threads.emplace_back([&, n] {
            ++started;
            go.wait();
            try {
                for (int i = 0; i < ROUNDS; ++i) {
                    const std::vector<std::string> out = round(n, docs[n], own[n], shared);
                    results[n].insert(results[n].end(), out.begin(), out.end());
                }
            } catch (const std::exception& e) {
                failures[n] = e.what();
            }
        });
    }
    while (started < THREADS)
        std::this_thread::yield();
    release.set_value();
    for (std::thread& t : threads)
        t.join();

    for (int n = 0; n < THREADS; ++n) {
        SCOPED_TRACE("thread " + std::to_string(n));
        ASSERT_EQ(failures[n], "");
        // The same work on this thread alone, now that everything is warm;
        // what the shared context built must open to the same text.
        const std::vector<std::string> alone = round(n, docs[n], own[n], own[n]);
        ASSERT_EQ(results[n].size(), alone.size() * ROUNDS);
        for (std::size_t i = 0; i < results[n].size(); ++i)
            EXPECT_EQ(results[n][i], alone[i % alone.size()]) << "item " << i % alone.size();

        // The single-threaded reference itself reads what was written.
        const std::string id = std::to_string(n);
        EXPECT_EQ(alone[0], digest(1000 + n, n, "2.7", "ping", 1, n));
        EXPECT_EQ(alone[1],
                  digest(1000 + n, n, "2.7", "call", 1, n) + digest("RC" + id, n, 900 + n));
        EXPECT_NE(alone[8].find(digest("M-" + id, "77" + id)), std::string::npos) << alone[8];
        EXPECT_NE(alone[8].find("<zuvo:name>cdn-" + id + "<"), std::string::npos) << alone[8];
        EXPECT_EQ(alone[9], digest("T-" + id, "189345600000" + id, "rs-" + id));
        const std::string& registration = alone[docs[n].size() + 3];
        EXPECT_NE(registration.find("[plain]<zuvo:registrationdata>"), std::string::npos)
            << registration;
    }
}

} // namespace
