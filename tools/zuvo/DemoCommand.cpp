// zuvo demo: a whole device session in one process, with encryption on
// under a fixed demo key. Each step builds a request with the library,
// lets the scripted server answer it, parses the answer with the matching
// response parser and prints all three.
#include "zuvo/Commands.h"

#include "capture/Har.h"
#include "common/Errors.h"
#include "common/Keys.h"
#include "common/ParseResponse.h"
#include "records/ResponseFields.h"
#include "records/ResponseTypes.h"
#include "server/ScriptedServer.h"

#include <zuvolib/zuvolib.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iostream>

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// The demo key: the bytes 0x00 to 0x1f. Anyone can decrypt the demo's
/// payloads with `zuvo payload --encrypted --key <this in hex>`.
std::vector<unsigned char> demoKey() {
    std::vector<unsigned char> key(KEY_BYTES);
    for (std::size_t i = 0; i < key.size(); ++i)
        key[i] = static_cast<unsigned char>(i);
    return key;
}

/// Where the device of the demo posts its requests (the server is in the
/// process; the address only labels the exchanges of the HAR file).
const char* const DEMO_URL = "http://127.0.0.1/zuvo";

/// Writes `entries` to the HAR file `path`.
void writeHar(const std::string& path, const std::vector<HarEntry>& entries) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    try {
        HarWriter har(file);
        for (const HarEntry& entry : entries)
            har.append(entry);
        har.finish();
    } catch (const RejectedError&) {
        throw UsageError("cannot write '" + path + "': " + std::strerror(errno));
    }
    if (!file)
        throw UsageError("cannot write '" + path + "': " + std::strerror(errno));
}

/// The device side of the session: its clock, the last server time it saw,
/// and the numbered exchanges with the server.
class DeviceSession {
public:
    DeviceSession() : context(makeCipherContext(demoKey())), server(context) {}

    /// A record of type R with the device's header fields filled.
    template <class R> R record() {
        R r;
        static_cast<zl::RequestData&>(r) = header;
        header.clientTime += 30;
        return r;
    }

    /// Sends `request`, prints the exchange, returns the parsed answer.
    /// Throws RejectedError when the server refuses the request or the
    /// answer does not parse or reports failure.
    template <class Parser, class Record>
    Record exchange(const std::string& title, const std::string& request) {
        ++step;
        HarEntry entry;
        const auto started = std::chrono::system_clock::now();
        entry.startedDateTime = harTime(started);
        entry.url = DEMO_URL;
        entry.requestHeaders = {{"Content-Type", "text/xml; charset=UTF-8"}};
        entry.hasRequestBody = true;
        entry.requestBody = request;
        std::string response;
        try {
            response = server.answer(request);
        } catch (const std::runtime_error& e) {
            entry.status = 400;
            entry.statusText = "Bad Request";
            capture.push_back(entry);
            throw RejectedError("step " + std::to_string(step) + " (" + title + "): " + e.what());
        }
        entry.time =
            std::chrono::duration<double, std::milli>(std::chrono::system_clock::now() - started)
                .count();
        entry.responseHeaders = entry.requestHeaders;
        entry.hasResponseBody = true;
        entry.responseBody = response;
        capture.push_back(entry);
        Record answer;
        const std::string parserName = parseResponse<Parser>(response, context, answer);
        if (!answer.success)
            throw RejectedError("step " + std::to_string(step) + " (" + title +
                                "): the server reported failure");
        header.serverTime = answer.serverTime;

        std::cout << "=== step " << step << ": " << title << " ===\n"
                  << "--- request ---\n"
                  << request << "--- response ---\n"
                  << response << "--- parsed with " << parserName << " ---\n"
                  << dumpJson(RecordConvert<Record>::to(answer)) << "\n\n"
                  << std::flush;
        return answer;
    }

    CipherContext context;
    int steps() const { return step; }
    /// Every exchange so far, as HTTP exchanges for a HAR file.
    std::vector<HarEntry> capture;

private:
    ScriptedServer server;
    /// The header of the next request: the last server time seen, the
    /// device's clock.
    zl::RequestData header{"4.2.1", "1.0", 0, 1700000000};
    int step = 0;
};

/// The steps of the session; see runDemo.
void runSession(DeviceSession& session) {
    std::cout << "zuvo demo: a device session against a scripted server; payloads are "
                 "encrypted with the demo key\n"
              << toHex(demoKey()) << "\n\n";
    const CipherContext& context = session.context;

    session.exchange<PlainParser, zl::ResponseData>(
        "ping", zl::RequestBuilder::buildRequest(session.record<zl::PingRequestData>(), context));

    const zl::PreregResponseData prereg =
        session.exchange<zl::PreregSubParser, zl::PreregResponseData>(
            "pre-registration",
            zl::RequestBuilder::buildRequest(session.record<zl::PreregRequestData>(), context));

    zl::RegRequestData reg = session.record<zl::RegRequestData>();
    reg.regType = 0;
    reg.regCode = prereg.regCode;
    session.exchange<zl::RegSubParser, zl::RegResponseData>(
        "registration by code", zl::RequestBuilder::buildRequest(reg, context, "demo-rc-7f3a"));

    zl::AuthRequestData auth = session.record<zl::AuthRequestData>();
    auth.movieId = 70143836;
    auth.trackId = 1;
    auth.videoProfiles = {zl::PROFILE_PLAYREADY_H264MPL30_PIFF,
                          zl::PROFILE_PLAYREADY_H264MPL31_PIFF,
                          zl::PROFILE_PLAYREADY_H264HPL40_PIFF};
    auth.audioProfiles = {zl::PROFILE_HEAAC_2_PIFF, zl::PROFILE_DDPLUS_5_1_PIFF};
    auth.timedTextProfiles = {zl::PROFILE_SIMPLESDH};
    const zl::AuthResponseData catalogue =
        session.exchange<zl::AuthSubParser, zl::AuthResponseData>(
            "authorization", zl::RequestBuilder::buildRequest(auth, context));
    if (catalogue.videoDownloadables.empty() || catalogue.audioTracks.empty() ||
        catalogue.audioTracks[0].audioDownloadables.empty())
        throw RejectedError("authorization: the catalogue offers nothing to play");

    // Report the viewing: the ticket comes back as issued, the streams by
    // the ids the catalogue gave them.
    zl::PlaydataRequestData play = session.record<zl::PlaydataRequestData>();
    play.lticket = catalogue.movieTicket;
    play.movieId = catalogue.movieId;
    play.totalPlaybackTime = 5400;
    play.laMovieTime = 5388;
    play.eventMovieTime = 5388;
    play.videoStreamPlayTimes = {{catalogue.videoDownloadables[0].downloadableId, 600},
                                 {catalogue.videoDownloadables.back().downloadableId, 4800}};
    play.audioStreamPlayTimes = {
        {catalogue.audioTracks[0].audioDownloadables[0].downloadableId, 5400}};
    session.exchange<PlainParser, zl::ResponseData>(
        "play data", zl::RequestBuilder::buildRequest(play, context));

    zl::LogblobRequestData log = session.record<zl::LogblobRequestData>();
    log.sequenceNumber = 1;
    log.logData = "player: session finished, 5400 s played\n";
    session.exchange<PlainParser, zl::ResponseData>("log blob",
                                                    zl::RequestBuilder::buildRequest(log, context));
}

} // namespace

int runDemo(const std::string& har) {
    if (!har.empty() && !std::ofstream(har, std::ios::binary | std::ios::app))
        throw UsageError("cannot write '" + har + "': " + std::strerror(errno));
    DeviceSession session;
    try {
        runSession(session);
    } catch (const std::exception&) {
        // The exchanges up to the failure are worth keeping.
        if (!har.empty())
            writeHar(har, session.capture);
        throw;
    }
    if (!har.empty())
        writeHar(har, session.capture);
    std::cout << "session complete: " << session.steps() << " steps" << std::endl;
    return EXIT_OK;
}

} // namespace zuvocli
