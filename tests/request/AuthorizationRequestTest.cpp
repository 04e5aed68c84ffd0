// Authorization: profile lists of any content and length.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(AuthorizationRequest, EmptyListsStillWriteTheirWrappers) {
    const AuthRequestData data{header(), -1, -2147483647 - 1, {}, {}, {}};
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              plainDocument("authorization(movieid=-1 trackid=-2147483648 contentprofiles("
                            "videoprofiles audioprofiles timedtextprofiles))"));
}

TEST(AuthorizationRequest, EveryEntryGetsAnElementEmptyWithoutIdentifier) {
    const auto p = [](int value) { return static_cast<ContentProfile>(value); };
    const AuthRequestData data{header(), 1, 2, {p(3), p(10), p(3)}, {p(19), p(-1)}, {p(21), p(0)}};
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              plainDocument("authorization(movieid=1 trackid=2 contentprofiles("
                            "videoprofiles(videoprofile=bd-h264-m2ts videoprofile "
                            "videoprofile=bd-h264-m2ts) audioprofiles(audioprofile audioprofile) "
                            "timedtextprofiles(timedtextprofile "
                            "timedtextprofile=wmdrm10-wmv3-asf)))"));
}

} // namespace
