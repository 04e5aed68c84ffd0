// Authorization: profile lists of any content and length.

#include "request/MessageTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

std::string profilesOf(const AuthRequestData& data) {
    const std::string doc = RequestBuilder::buildRequest(data, plainContext());
    const std::size_t from = doc.find("\t\t\t<zuvo:videoprofiles");
    return doc.substr(from, doc.find("\t\t</zuvo:contentprofiles>") - from);
}

TEST(AuthorizationRequest, EmptyListsStillWriteTheirWrappers) {
    EXPECT_EQ(
        profilesOf(AuthRequestData()),
        lines({"3<zuvo:videoprofiles/>", "3<zuvo:audioprofiles/>", "3<zuvo:timedtextprofiles/>"}));
}

TEST(AuthorizationRequest, EveryEntryGetsAnElementEmptyWithoutIdentifier) {
    AuthRequestData data;
    data.videoProfiles = {PROFILE_BD_H264_M2TS, static_cast<ContentProfile>(10),
                          PROFILE_BD_H264_M2TS};
    data.audioProfiles = {static_cast<ContentProfile>(19), PROFILE_UNKNOWN};
    data.timedTextProfiles = {static_cast<ContentProfile>(21), PROFILE_WMDRM10_WMV3_ASF};
    EXPECT_EQ(
        profilesOf(data),
        lines({"3<zuvo:videoprofiles>", "4<zuvo:videoprofile>bd-h264-m2ts</zuvo:videoprofile>",
               "4<zuvo:videoprofile/>", "4<zuvo:videoprofile>bd-h264-m2ts</zuvo:videoprofile>",
               "3</zuvo:videoprofiles>", "3<zuvo:audioprofiles>", "4<zuvo:audioprofile/>",
               "4<zuvo:audioprofile/>", "3</zuvo:audioprofiles>", "3<zuvo:timedtextprofiles>",
               "4<zuvo:timedtextprofile/>",
               "4<zuvo:timedtextprofile>wmdrm10-wmv3-asf</zuvo:timedtextprofile>",
               "3</zuvo:timedtextprofiles>"}));
}

TEST(AuthorizationRequest, IdsAreSignedDecimal) {
    AuthRequestData data;
    data.movieId = -1;
    data.trackId = -2147483647 - 1;
    const std::string doc = RequestBuilder::buildRequest(data, plainContext());
    EXPECT_NE(doc.find(lines({"2<zuvo:movieid>-1</zuvo:movieid>",
                              "2<zuvo:trackid>-2147483648</zuvo:trackid>"})),
              std::string::npos);
}

} // namespace
