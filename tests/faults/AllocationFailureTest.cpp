// Every allocation of a build or a parse is made to fail in turn. Each time
// the failure must come out of the call as std::bad_alloc or leave no trace,
// leave no block behind, and leave the objects fit for the next document.
//
// The program replaces the global operator new, so it is a program of its
// own: the replacement serves the library as well. Sanitizer runtimes and
// memcheck bring replacements of their own, so it does not run under them.

#include "parse/ResponseDocs.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>

namespace {

// Allocations left before the one that fails; negative: none fails.
std::atomic<long> allowance{-1};

// Blocks handed out and not yet returned: a failed attempt must not leave
// any behind.
std::atomic<long> live{0};

} // namespace

// Neither form is inlined anywhere: a tool that replaces them (memcheck
// does) must see every call.
__attribute__((noinline)) void* operator new(std::size_t size) {
    long left = allowance.load();
    while (left >= 0 && !allowance.compare_exchange_weak(left, left - 1)) {
    }
    if (left == 0)
        throw std::bad_alloc();
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    ++live;
    return p;
}

__attribute__((noinline)) void operator delete(void* p) noexcept {
    if (p)
        --live;
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept {
    operator delete(p);
}

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

// Makes allocation 0, 1, 2... of `attempt` fail in turn, until it runs
// with fewer allocations than that. A failure must either come out as
// std::bad_alloc or leave no trace: `attempt` reports whether its result is
// right. After each failure `attempt` must succeed again once `reset` has
// cleared what it filled. Returns how many allocations the attempt makes.
// Run it once beforehand, so that what lives for the whole process is in
// place.
long failEachAllocation(const std::function<bool()>& attempt, const std::function<void()>& reset) {
    EXPECT_TRUE(attempt());
    for (long n = 0; n < 100000; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + " failed");
        bool thrown = false, right = false;
        const long before = live;
        allowance = n;
        try {
            right = attempt();
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        if (allowance.exchange(-1) >= 0)
            return n; // nothing was injected
        EXPECT_EQ(live - before, 0) << "blocks left behind";
        EXPECT_TRUE(thrown || right) << "the failure was swallowed";
        reset();
        EXPECT_TRUE(attempt()) << "unfit for the next document";
        if (::testing::Test::HasFailure())
            return n;
    }
    ADD_FAILURE() << "the attempt never got through";
    return 0;
}

const std::string FRAGMENT = "<zuvo:cticket expiration=\"77\">T1ck</zuvo:cticket>\n"
                             "<zuvo:rs>rs-data</zuvo:rs>\n";

TEST(AllocationFailure, ParserAndBuilderPassItOnAndStayUsable) {
    if (std::getenv("ZUVO_UNDER_VALGRIND"))
        GTEST_SKIP() << "memcheck puts its own operator new in place of this program's";
    const Context context = keyedContext();
    const std::string doc = responseDoc(
        basicHeader(), block(2, "registrationdata",
                             el(3, "userid", "u-1") + el(3, "payload", seal(context, FRAGMENT))));
    ExpatParser expat;
    RegResponseData data;
    RegSubParser parser(expat, data);
    // The record keeps what the last parse wrote, so that a parse allocates
    // nothing for it. The sealed payload takes the fragment reader's
    // allocations through this parse as well.
    const auto parse = [&] {
        return parser.parse(doc, context) && data.userId == "u-1" &&
               data.clientTicketExpiration == 77u && data.serverTime == 1000u;
    };
    EXPECT_GT(failEachAllocation(parse, [&] { data = RegResponseData(); }), 20);

    RegRequestData record;
    record.softwareVersion = "5.1.0";
    record.regCode = "ABC123";
    const Context base64(new krel::KrelContext());
    const std::string expected = RequestBuilder::buildRequest(record, base64, "rc-1");
    const auto build = [&] {
        return RequestBuilder::buildRequest(record, base64, "rc-1") == expected;
    };
    EXPECT_GT(failEachAllocation(build, [] {}), 20);
}

} // namespace
