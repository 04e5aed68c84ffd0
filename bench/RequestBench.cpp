// Request road: RequestBuilder against a direct append of the same bytes
// into a reserved string (the floor) and libxml2's text writer.

#include "AllocationCounter.h"
#include "Registry.h"

#include <zuvolib/zuvolib.h>

#include <libxml/xmlwriter.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace zuvobench {
namespace {

using namespace velmora::zuvolib;
using Velmora::QRXClient::Base64;
typedef std::tr1::shared_ptr<krel::KrelContext> Context;

template <typename T> std::string num(T value) {
    char buf[24];
    const auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    return std::string(buf, end);
}

// Appends the document text directly: the least work that yields the bytes.
class DirectWriter {
public:
    explicit DirectWriter(std::size_t reserve) { out_.reserve(reserve); }
    void declaration() { out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"; }
    void open(const char* name, const char* attr = nullptr, const std::string& value = "") {
        startTag(name, attr, value);
        out_ += ">\n";
        ++depth_;
    }
    void close(const char* name) {
        --depth_;
        out_.append(depth_, '\t');
        out_ += "</";
        out_ += name;
        out_ += ">\n";
    }
    void leaf(const char* name, const std::string& text, const char* attr = nullptr,
              const std::string& value = "") {
        startTag(name, attr, value);
        if (text.empty()) {
            out_ += "/>\n";
            return;
        }
        out_ += '>';
        out_ += text;
        out_ += "</";
        out_ += name;
        out_ += ">\n";
    }
    std::string take() { return std::move(out_); }

private:
    void startTag(const char* name, const char* attr, const std::string& value) {
        out_.append(depth_, '\t');
        out_ += '<';
        out_ += name;
        if (attr) {
            out_ += ' ';
            out_ += attr;
            out_ += "=\"";
            out_ += value;
            out_ += '"';
        }
    }
    std::string out_;
    std::size_t depth_ = 0;
};

// The same calls through libxml2's xmlTextWriter.
class LibxmlWriter {
public:
    explicit LibxmlWriter(std::size_t) : buffer_(xmlBufferCreate()) {
        writer_ = xmlNewTextWriterMemory(buffer_, 0);
        xmlTextWriterSetIndent(writer_, 1);
        xmlTextWriterSetIndentString(writer_, BAD_CAST "\t");
    }
    ~LibxmlWriter() {
        if (writer_)
            xmlFreeTextWriter(writer_);
        xmlBufferFree(buffer_);
    }
    void declaration() { xmlTextWriterStartDocument(writer_, "1.0", "UTF-8", nullptr); }
    void open(const char* name, const char* attr = nullptr, const std::string& value = "") {
        xmlTextWriterStartElement(writer_, BAD_CAST name);
        if (attr)
            xmlTextWriterWriteAttribute(writer_, BAD_CAST attr, BAD_CAST value.c_str());
    }
    void close(const char*) { xmlTextWriterEndElement(writer_); }
    void leaf(const char* name, const std::string& text, const char* attr = nullptr,
              const std::string& value = "") {
        open(name, attr, value);
        if (!text.empty())
            xmlTextWriterWriteString(writer_, BAD_CAST text.c_str());
        xmlTextWriterEndElement(writer_);
    }
    std::string take() {
        xmlFreeTextWriter(writer_); // flushes into the buffer
        writer_ = nullptr;
        return std::string(reinterpret_cast<const char*>(xmlBufferContent(buffer_)),
                           static_cast<std::size_t>(xmlBufferLength(buffer_)));
    }

private:
    xmlBufferPtr buffer_;
    xmlTextWriterPtr writer_;
};

template <typename W> std::string payload(W&& inner) {
    return Base64::encode(inner.take());
}

template <typename W> void header(W& w, const RequestData& d) {
    w.declaration();
    w.open("zuvo:request", "xmlns:zuvo", namespaceBase + PROTOCOL_VERSION);
    w.open("zuvo:header");
    w.leaf("zuvo:softwareversion", d.softwareVersion);
    w.leaf("zuvo:uiversion", d.uiVersion);
    W times(128);
    times.open("zuvo:clientservertimes");
    times.leaf("zuvo:servertime", num(d.serverTime));
    times.leaf("zuvo:clienttime", num(d.clientTime));
    times.close("zuvo:clientservertimes");
    w.leaf("zuvo:payload", payload(times), "encrypted", "false");
    w.close("zuvo:header");
}

template <typename W> std::string ping(const PingRequestData& d) {
    W w(512);
    header(w, d);
    w.leaf("zuvo:ping", "");
    w.close("zuvo:request");
    return w.take();
}

template <typename W> std::string authorization(const AuthRequestData& d) {
    W w(2048);
    header(w, d);
    w.open("zuvo:authorization");
    w.leaf("zuvo:movieid", num(d.movieId));
    w.leaf("zuvo:trackid", num(d.trackId));
    w.open("zuvo:contentprofiles");
    const struct {
        const char* list;
        const char* item;
        const std::vector<ContentProfile>* profiles;
    } lists[] = {{"zuvo:videoprofiles", "zuvo:videoprofile", &d.videoProfiles},
                 {"zuvo:audioprofiles", "zuvo:audioprofile", &d.audioProfiles},
                 {"zuvo:timedtextprofiles", "zuvo:timedtextprofile", &d.timedTextProfiles}};
    for (const auto& l : lists) {
        w.open(l.list);
        for (ContentProfile p : *l.profiles)
            w.leaf(l.item, profileToString(p));
        w.close(l.list);
    }
    w.close("zuvo:contentprofiles");
    w.close("zuvo:authorization");
    w.close("zuvo:request");
    return w.take();
}

template <typename W> std::string playdata(const PlaydataRequestData& d) {
    W w(4096);
    header(w, d);
    w.open("zuvo:playdata");
    w.leaf("zuvo:lticket", std::string(d.lticket.begin(), d.lticket.end()));
    W inner(2048);
    inner.open("zuvo:playdata");
    inner.leaf("zuvo:movieid", num(d.movieId));
    inner.leaf("zuvo:lamovietime", num(d.laMovieTime));
    inner.leaf("zuvo:eventmovietime", num(d.eventMovieTime));
    inner.open("zuvo:playbacktime");
    inner.leaf("zuvo:total", num(d.totalPlaybackTime));
    const struct {
        const char* list;
        const std::vector<StreamPlayTime>* times;
    } lists[] = {{"zuvo:videostreamplaytimes", &d.videoStreamPlayTimes},
                 {"zuvo:audiostreamplaytimes", &d.audioStreamPlayTimes},
                 {"zuvo:timedtextstreamplaytimes", &d.timedTextStreamPlayTimes}};
    for (const auto& l : lists) {
        if (l.times->empty())
            continue;
        inner.open(l.list);
        for (const StreamPlayTime& t : *l.times) {
            inner.open("zuvo:streamplaytime");
            inner.leaf("zuvo:downloadableid", t.downloadableId);
            inner.leaf("zuvo:playtime", num(t.playTime));
            inner.close("zuvo:streamplaytime");
        }
        inner.close(l.list);
    }
    inner.close("zuvo:playbacktime");
    inner.close("zuvo:playdata");
    w.leaf("zuvo:payload", payload(inner));
    w.close("zuvo:playdata");
    w.close("zuvo:request");
    return w.take();
}

template <typename W> std::string registration(const RegRequestData& d, const std::string& rc) {
    W w(1024);
    header(w, d);
    w.open("zuvo:register");
    w.open("zuvo:rendezvousreg");
    w.leaf("zuvo:regcode", d.regCode);
    W inner(256);
    inner.open("zuvo:registrationdata");
    inner.leaf("zuvo:rc", rc, "version", "1");
    inner.close("zuvo:registrationdata");
    w.leaf("zuvo:payload", payload(inner));
    w.close("zuvo:rendezvousreg");
    w.close("zuvo:register");
    w.close("zuvo:request");
    return w.take();
}

template <typename R> void fillHeader(R& r) {
    r.softwareVersion = "4.2.1-device";
    r.uiVersion = "ui-3.0";
    r.serverTime = 1700000000;
    r.clientTime = 1700000042;
}

// Times `build` and reports its allocations per document.
template <typename F> void timeBuild(benchmark::State& state, F build) {
    const std::size_t before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(build());
    setAllocationCounters(
        state, (allocationCount() - before) / static_cast<std::size_t>(state.iterations()), 0);
}

template <typename F, typename G, typename H>
void addGroup(const std::string& group, F library, G floor, H libxml) {
    if (library() != floor()) {
        std::fprintf(stderr, "%s: the floor writes different bytes than the library\n",
                     group.c_str());
        std::abort();
    }
    add(group, "direct append", Role::Floor, [floor](benchmark::State& s) { timeBuild(s, floor); });
    add(group, "zuvolib", Role::Subject, [library](benchmark::State& s) { timeBuild(s, library); });
    add(group, "libxml2 xmlTextWriter", Role::Alternative,
        [libxml](benchmark::State& s) { timeBuild(s, libxml); });
}

} // namespace

void registerRequestBenchmarks() {
    const Context context(new krel::KrelContext());

    PingRequestData p;
    fillHeader(p);
    addGroup(
        "build ping", [=] { return RequestBuilder::buildRequest(p, context); },
        [=] { return ping<DirectWriter>(p); }, [=] { return ping<LibxmlWriter>(p); });

    AuthRequestData a;
    fillHeader(a);
    a.movieId = 70012345;
    a.trackId = 12;
    for (int i = 0; i < 10; ++i) {
        a.videoProfiles.push_back(static_cast<ContentProfile>(i));
        a.audioProfiles.push_back(static_cast<ContentProfile>(11 + i % 8));
        a.timedTextProfiles.push_back(i % 2 ? PROFILE_SIMPLESDH : PROFILE_UNKNOWN);
    }
    addGroup(
        "build authorization 3x10", [=] { return RequestBuilder::buildRequest(a, context); },
        [=] { return authorization<DirectWriter>(a); },
        [=] { return authorization<LibxmlWriter>(a); });

    PlaydataRequestData d;
    fillHeader(d);
    const std::string ticket = "lticket-0123456789abcdef";
    d.lticket.assign(ticket.begin(), ticket.end());
    d.movieId = 70012345;
    d.totalPlaybackTime = 5400;
    d.laMovieTime = 5300;
    d.eventMovieTime = 5310;
    for (int i = 0; i < 10; ++i) {
        d.videoStreamPlayTimes.push_back(StreamPlayTime{"v" + num(100000 + i), 500 + i});
        d.audioStreamPlayTimes.push_back(StreamPlayTime{"a" + num(200000 + i), 400 + i});
        d.timedTextStreamPlayTimes.push_back(StreamPlayTime{"t" + num(300000 + i), 300 + i});
    }
    addGroup(
        "build playdata 3x10", [=] { return RequestBuilder::buildRequest(d, context); },
        [=] { return playdata<DirectWriter>(d); }, [=] { return playdata<LibxmlWriter>(d); });

    RegRequestData r;
    fillHeader(r);
    r.regType = 0;
    r.regCode = "ABC123";
    const std::string rc = "rc-0123456789abcdef0123456789abcdef";
    addGroup(
        "build registration", [=] { return RequestBuilder::buildRequest(r, context, rc); },
        [=] { return registration<DirectWriter>(r, rc); },
        [=] { return registration<LibxmlWriter>(r, rc); });
}

} // namespace zuvobench
