// Response road: the library's parsers against expat with no-op handlers
// (the floor of any expat-based parser), pugixml and libxml2's SAX parser, on
// the same bytes.

#include "AllocationCounter.h"
#include "Registry.h"
#include "ResponseGenerator.h"

#include <zuvolib/zuvolib.h>

#include <expat.h>
#include <libxml/parser.h>
#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

namespace zuvobench {
namespace {

using namespace velmora::zuvolib;
typedef std::tr1::shared_ptr<krel::KrelContext> Context;

const std::vector<unsigned char> kKey(32, 0x21);
// The length of the pieces the library feeds expat.
const std::size_t kFeedPiece = 120 * 1024;

// Expat's own allocations are counted too, through its memory suite.
void* countedMalloc(std::size_t size) {
    return ::operator new(size);
}
void countedFree(void* p) {
    ::operator delete(p);
}
void* countedRealloc(void* p, std::size_t size) {
    if (!p)
        return countedMalloc(size);
    void* q = countedMalloc(size);
    std::memcpy(q, p, std::min(size, malloc_usable_size(p)));
    countedFree(p);
    return q;
}
const XML_Memory_Handling_Suite kCountedSuite = {countedMalloc, countedRealloc, countedFree};

struct Handle {
    Handle() : expat{XML_ParserCreate_MM(nullptr, &kCountedSuite, nullptr)} {}
    ~Handle() { XML_ParserFree(expat.parser); }
    Expat expat;
};

std::size_t countElements(const std::string& doc) {
    std::size_t count = 0;
    XML_Parser p = XML_ParserCreate(nullptr);
    XML_SetUserData(p, &count);
    XML_SetStartElementHandler(
        p, [](void* n, const XML_Char*, const XML_Char**) { ++*static_cast<std::size_t*>(n); });
    XML_Parse(p, doc.data(), static_cast<int>(doc.size()), 1);
    XML_ParserFree(p);
    return count;
}

// Runs `parseOnce` in the timing loop and reports allocations per document.
template <typename F> void timeParse(benchmark::State& state, const std::string& doc, F parseOnce) {
    const std::size_t elements = countElements(doc);
    const std::size_t before = allocationCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(parseOnce());
    const std::size_t perDoc =
        (allocationCount() - before) / static_cast<std::size_t>(state.iterations());
    setAllocationCounters(state, perDoc, elements);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * doc.size()));
}

// Expat with no-op handlers, given the document whole or in pieces of
// `piece` bytes as the library feeds it (after each piece but the last,
// expat counts the lines read so far).
void expatNoop(benchmark::State& state, const std::string& doc, std::size_t piece) {
    Handle h;
    timeParse(state, doc, [&] {
        XML_ParserReset(h.expat.parser, nullptr);
        XML_SetElementHandler(
            h.expat.parser, [](void*, const XML_Char*, const XML_Char**) {},
            [](void*, const XML_Char*) {});
        XML_SetCharacterDataHandler(h.expat.parser, [](void*, const XML_Char*, int) {});
        std::size_t at = 0;
        for (; doc.size() - at > piece; at += piece)
            XML_Parse(h.expat.parser, doc.data() + at, static_cast<int>(piece), 0);
        return XML_Parse(h.expat.parser, doc.data() + at, static_cast<int>(doc.size() - at), 1);
    });
}

void pugiWalk(benchmark::State& state, const std::string& doc) {
    timeParse(state, doc, [&] {
        pugi::xml_document d;
        d.load_buffer(doc.data(), doc.size());
        std::size_t n = 0;
        struct Walker : pugi::xml_tree_walker {
            std::size_t* n;
            bool for_each(pugi::xml_node& node) override {
                *n += node.type() == pugi::node_element;
                return true;
            }
        } walker;
        walker.n = &n;
        d.traverse(walker);
        return n;
    });
}

void libxml2Sax(benchmark::State& state, const std::string& doc) {
    xmlSAXHandler sax;
    std::memset(&sax, 0, sizeof sax);
    sax.initialized = XML_SAX2_MAGIC;
    sax.startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int,
                            const xmlChar**, int, int, const xmlChar**) {};
    sax.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
    sax.characters = [](void*, const xmlChar*, int) {};
    timeParse(state, doc, [&] {
        return xmlSAXUserParseMemory(&sax, nullptr, doc.data(), static_cast<int>(doc.size()));
    });
}

template <typename Parser, typename Record>
void library(benchmark::State& state, const std::string& doc, const Context& context) {
    Handle h;
    timeParse(state, doc, [&] {
        Record record;
        Parser parser(h.expat, record);
        if (!parser.parse(doc, context))
            std::abort();
        return record.serverTime;
    });
}

template <typename Parser, typename Record>
void addGroup(const std::string& group, const std::string& doc, const Context& context) {
    add(group, "expat no-op handlers", Role::Floor,
        [doc](benchmark::State& s) { expatNoop(s, doc, doc.size()); });
    if (doc.size() > kFeedPiece)
        add(group, "expat no-op, 120 KiB pieces", Role::PiecesFloor,
            [doc](benchmark::State& s) { expatNoop(s, doc, kFeedPiece); });
    add(group, "zuvolib", Role::Subject,
        [doc, context](benchmark::State& s) { library<Parser, Record>(s, doc, context); });
    add(group, "pugixml parse + walk", Role::Alternative,
        [doc](benchmark::State& s) { pugiWalk(s, doc); });
    add(group, "libxml2 SAX no-op", Role::Alternative,
        [doc](benchmark::State& s) { libxml2Sax(s, doc); });
}

// Peak heap of one parse of `doc`, with the handle alive throughout (expat
// keeps its input buffer with the handle), and what the filled record keeps
// once parser and handle are gone.
void reportPeakMemory(const char* name, const std::string& doc, const Context& context) {
    startHeapTracking();
    long long record = 0;
    {
        AuthResponseData filled;
        {
            Handle h;
            AuthSubParser parser(h.expat, filled);
            if (!parser.parse(doc, context))
                std::abort();
        }
        record = heapTrack().liveBytes;
    }
    const long long peak = heapTrack().peakBytes;
    stopHeapTracking();
    const auto kb = [](long long bytes) { return static_cast<double>(bytes) / 1024; };
    std::printf("  %-10s %12.0f %12.0f %12.0f %12.0f\n", name,
                kb(static_cast<long long>(doc.size())), kb(peak), kb(record), kb(peak - record));
}

} // namespace

void registerResponseBenchmarks() {
    krel::KrelContext sealer(kKey);
    const Context context(new krel::KrelContext(kKey));
    const struct {
        const char* name;
        std::size_t bytes;
    } sizes[] = {{"2 KB", 2 * 1024}, {"60 KB", 60 * 1024}, {"1 MB", 1024 * 1024}};
    for (const auto& size : sizes) {
        const std::string doc = authorizationResponse(shapeForSize(size.bytes, sealer), sealer);
        addGroup<AuthSubParser, AuthResponseData>(std::string("parse authorization ") + size.name,
                                                  doc, context);
    }
    addGroup<PreregSubParser, PreregResponseData>("parse pre-registration", preregResponse(sealer),
                                                  context);
    addGroup<RegSubParser, RegResponseData>("parse registration", registrationResponse(sealer),
                                            context);
    addGroup<AuthrenewSubParser, AuthrenewResponseData>("parse renewal", renewalResponse(sealer),
                                                        context);
}

void reportResponsePeakMemory() {
    krel::KrelContext sealer(kKey);
    const Context context(new krel::KrelContext(kKey));
    std::printf("\npeak heap of an authorization parse, handle alive (KB)\n"
                "  %-10s %12s %12s %12s %12s\n",
                "catalogue", "document", "peak", "record", "peak-record");
    const struct {
        const char* name;
        std::size_t bytes;
    } sizes[] = {{"60 KB", 60 * 1024}, {"1 MB", 1024 * 1024}, {"20 MB", 20 * 1024 * 1024}};
    for (const auto& size : sizes)
        reportPeakMemory(size.name, authorizationResponse(shapeForSize(size.bytes, sealer), sealer),
                         context);
}

} // namespace zuvobench
