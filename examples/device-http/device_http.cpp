// A device session over HTTP: ping, pre-registration, registration by the
// code, authorization of a title and the play data report, each request
// built with the library, POSTed with libcurl and its answer parsed with the
// matching parser. Payloads are encrypted with the key shared with the
// server. Prints what the device learns at each step, and stops at the first
// step that fails, saying how.
//
// Usage: device-http URL (--key HEX | --key-file FILE) [--timeout SECONDS]
#include <zuvolib/zuvolib.h>

#include <curl/curl.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace velmora::zuvolib;

namespace {

typedef std::tr1::shared_ptr<krel::KrelContext> CipherContext;

/// A step that failed: what the device saw.
struct StepFailed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The device's log: the library's reports go here, not to standard output.
void logLine(const std::string& text) {
    std::cerr << "device-http log: " << text << (text.empty() || text.back() != '\n' ? "\n" : "");
}

/// Where in the answer a parse failed, for the step's one-line message.
std::string where(const ParseFailure& failure) {
    return "line " + std::to_string(failure.line) + ", column " +
           std::to_string(failure.column + 1);
}

/// What a failed parse means for the device, from the parser's record of it.
std::string explain(const ParseFailure& failure) {
    switch (failure.kind) {
    case ParseFailure::MALFORMED: // cut off on the way, or not XML at all
        return "the response is malformed or cut off (" + failure.expatMessage + " at " +
               where(failure) + ")";
    case ParseFailure::PAYLOAD:
        return "a payload of the response could not be opened (in '" + failure.element + "' at " +
               where(failure) + "; is the key the server's?)";
    case ParseFailure::NO_CIPHER_CONTEXT:
        return "the response is encrypted and the device has no key";
    default: // well-formed, but not what this parser reads
        return "the response was rejected by " + failure.parserName + " (element '" +
               failure.element + "' at " + where(failure) + ")";
    }
}

/// The 32-byte key from 64 hex digits.
std::vector<unsigned char> keyFromHex(std::string hex) {
    hex.erase(hex.find_last_not_of(" \t\r\n") + 1);
    if (hex.size() != 64 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw std::invalid_argument("the key must be 64 hex digits");
    std::vector<unsigned char> key;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        key.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return key;
}

/// Reads the common header only, for answers without a result body of their
/// own (ping, play data).
class HeaderParser : public ParentParser {
public:
    HeaderParser(Expat& expat, ResponseData& record) : ParentParser(expat, record, nullptr, 0) {}
    const char* getParserName() const override { return "HeaderParser"; }

protected:
    bool canParseResultSubTag(unsigned int) const override { return false; }
    bool onResultSubTagStartEvent(unsigned int, unsigned int, const std::string&,
                                  const std::map<std::string, std::string>&) override {
        return false;
    }
    bool onResultSubTagEndEvent(unsigned int, const std::string&) override { return false; }
    void onResultSubDataEvent(unsigned int, const std::string&) override {}
};

/// The transport: one libcurl handle, kept alive across the session.
class Transport {
public:
    Transport(std::string url, long timeoutSeconds) : url(std::move(url)), curl(curl_easy_init()) {
        if (!curl)
            throw std::runtime_error("libcurl did not start");
        headers = curl_slist_append(nullptr, "Content-Type: text/xml; charset=utf-8");
        curl_easy_setopt(curl, CURLOPT_URL, this->url.c_str());
        curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
        curl_easy_setopt(curl, CURLOPT_TIMEOUT, timeoutSeconds);
        curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Transport::collect);
    }
    ~Transport() {
        curl_slist_free_all(headers);
        curl_easy_cleanup(curl);
    }
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// POSTs `request` and returns the body of a 200 answer. Throws
    /// StepFailed for a transport error or any other status.
    std::string post(const std::string& request) {
        std::string body;
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, request.data());
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(request.size()));
        curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
        const CURLcode result = curl_easy_perform(curl);
        if (result != CURLE_OK)
            throw StepFailed(std::string("transport error: ") + curl_easy_strerror(result));
        long status = 0;
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
        if (status != 200)
            throw StepFailed("HTTP " + std::to_string(status) + ": " +
                             body.substr(0, body.find('\n')));
        return body;
    }

private:
    static size_t collect(char* data, size_t size, size_t count, void* body) {
        static_cast<std::string*>(body)->append(data, size * count);
        return size * count;
    }

    std::string url;
    CURL* curl;
    curl_slist* headers = nullptr;
};

/// The device: its clock, the last server time it saw, and its exchanges.
class Device {
public:
    Device(Transport& transport, CipherContext context)
        : transport(transport), context(std::move(context)) {}

    /// A record of type R with the header fields filled.
    template <class R> R record() {
        R r;
        r.softwareVersion = "4.2.1";
        r.uiVersion = "1.0";
        r.serverTime = serverTime;
        r.clientTime = clientTime;
        clientTime += 30;
        return r;
    }

    /// Sends `request` and parses the answer into a record with `Parser`.
    /// Throws StepFailed when the answer cannot be read or reports failure.
    template <class Parser, class Record> Record exchange(const std::string& request) {
        const std::string response = transport.post(request);
        Record answer;
        ExpatParser expat;
        Parser parser(expat, answer);
        parser.setReportSink(logLine);
        bool parsed = false;
        try {
            parsed = parser.parse(response, context);
        } catch (const std::exception& e) {
            // A payload the key cannot open is recorded before it is thrown;
            // anything else (out of memory, say) is not the answer's fault.
            if (parser.lastFailure().kind != ParseFailure::PAYLOAD)
                throw;
            logLine(e.what());
        }
        if (!parsed) {
            // Rejections have logged their report; expat's, with an excerpt
            // of the answer, is logged on request.
            if (parser.lastFailure().kind == ParseFailure::MALFORMED)
                parser.showError(response);
            throw StepFailed(explain(parser.lastFailure()));
        }
        if (!answer.success)
            throw StepFailed("refused by the server: code " + std::to_string(answer.code) + ", \"" +
                             answer.userText + "\"");
        serverTime = answer.serverTime;
        return answer;
    }

    const CipherContext& cipher() const { return context; }

private:
    Transport& transport;
    CipherContext context;
    unsigned int serverTime = 0;
    unsigned int clientTime = 1700000000;
};

/// The session, step by step; `step` names the step under way.
void runSession(Device& device, std::string& step) {
    step = "ping";
    const ResponseData pong = device.exchange<HeaderParser, ResponseData>(
        RequestBuilder::buildRequest(device.record<PingRequestData>(), device.cipher()));
    std::cout << "ping: server time " << pong.serverTime << ", poll every "
              << pong.highFrequencyPollInterval << " s, support " << pong.supportPhone << '\n';

    step = "pre-registration";
    const PreregResponseData prereg = device.exchange<PreregSubParser, PreregResponseData>(
        RequestBuilder::buildRequest(device.record<PreregRequestData>(), device.cipher()));
    std::cout << "pre-registration: code " << prereg.regCode << ", retry every "
              << prereg.retryInterval << " s for " << prereg.totalTime << " s\n";

    step = "registration";
    RegRequestData reg = device.record<RegRequestData>();
    reg.regType = 0;
    reg.regCode = prereg.regCode;
    const RegResponseData registered = device.exchange<RegSubParser, RegResponseData>(
        RequestBuilder::buildRequest(reg, device.cipher(), "device-http-rc"));
    std::cout << "registration: user " << registered.userId << " (" << registered.userDescription
              << "), client ticket of " << registered.clientTicket.size() << " bytes\n";

    step = "authorization";
    AuthRequestData auth = device.record<AuthRequestData>();
    auth.movieId = 70143836;
    auth.trackId = 1;
    auth.videoProfiles = {PROFILE_PLAYREADY_H264MPL30_PIFF, PROFILE_PLAYREADY_H264MPL31_PIFF};
    auth.audioProfiles = {PROFILE_HEAAC_2_PIFF};
    const AuthResponseData catalogue = device.exchange<AuthSubParser, AuthResponseData>(
        RequestBuilder::buildRequest(auth, device.cipher()));
    std::cout << "authorization: title " << catalogue.movieId << ", "
              << catalogue.videoDownloadables.size() << " video downloadables, "
              << catalogue.audioTracks.size() << " audio tracks, " << catalogue.cdns.size()
              << " CDNs, movie ticket of " << catalogue.movieTicket.size() << " bytes\n";
    if (catalogue.videoDownloadables.empty() || catalogue.audioTracks.empty() ||
        catalogue.audioTracks[0].audioDownloadables.empty())
        throw StepFailed("the catalogue offers nothing to play");

    step = "play data";
    PlaydataRequestData play = device.record<PlaydataRequestData>();
    play.lticket = catalogue.movieTicket;
    play.movieId = catalogue.movieId;
    play.totalPlaybackTime = 5400;
    play.videoStreamPlayTimes = {{catalogue.videoDownloadables[0].downloadableId, 5400}};
    play.audioStreamPlayTimes = {
        {catalogue.audioTracks[0].audioDownloadables[0].downloadableId, 5400}};
    const ResponseData played = device.exchange<HeaderParser, ResponseData>(
        RequestBuilder::buildRequest(play, device.cipher()));
    std::cout << "play data: accepted at server time " << played.serverTime << '\n';
}

} // namespace

int main(int argc, char** argv) {
    std::string url, keyHex, keyFile;
    long timeout = 30;
    bool usage = false;
    for (int i = 1; i < argc && !usage; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--key" && hasValue)
            keyHex = argv[++i];
        else if (arg == "--key-file" && hasValue)
            keyFile = argv[++i];
        else if (arg == "--timeout" && hasValue)
            timeout = std::stol(argv[++i]);
        else if (url.empty() && arg.compare(0, 2, "--") != 0)
            url = arg;
        else
            usage = true;
    }
    if (usage || url.empty() || keyHex.empty() == keyFile.empty()) {
        std::cerr << "usage: device-http URL (--key HEX | --key-file FILE) [--timeout SECONDS]\n";
        return 2;
    }

    curl_global_init(CURL_GLOBAL_DEFAULT);
    int status = 0;
    std::string step = "start";
    try {
        if (!keyFile.empty()) {
            std::ifstream file(keyFile);
            std::stringstream text;
            text << file.rdbuf();
            if (!file)
                throw std::invalid_argument("cannot read the key file " + keyFile);
            keyHex = text.str();
        }
        Transport transport(url, timeout);
        Device device(transport, CipherContext(new krel::KrelContext(keyFromHex(keyHex))));
        runSession(device, step);
        std::cout << "session complete" << std::endl;
    } catch (const StepFailed& e) {
        std::cout << step << " failed: " << e.what() << std::endl;
        status = 1;
    } catch (const std::exception& e) {
        std::cerr << "device-http: " << e.what() << '\n';
        status = 2;
    }
    curl_global_cleanup();
    return status;
}
