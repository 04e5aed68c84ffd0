// Play data and log chunks: raw ticket bytes, optional stream lists, binary logs.

#include "request/RequestTestSupport.h"

#include <gtest/gtest.h>

using namespace velmora::zuvolib;
using namespace zuvotest;

namespace {

TEST(PlaydataRequest, TicketBytesAreCopiedOneForOne) {
    PlaydataRequestData data;
    data.lticket = {0x00, 0x7f, 0x80, 0xff, '<'};
    static const char ticket[] = "\t\t<zuvo:lticket>\0\x7f\x80\xff<</zuvo:lticket>\n";
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext())
                  .find(std::string(ticket, sizeof ticket - 1)),
              std::string::npos);
}

TEST(PlaydataRequest, OnlyNonEmptyListsGetAWrapper) {
    PlaydataRequestData data{header(), {}, 0, 0, 0, -5, {}, {}, {}};
    const std::string head =
        "playdata(movieid=0 lamovietime=0 eventmovietime=-5 playbacktime(total=0";
    EXPECT_EQ(RequestBuilder::buildRequest(data, plainContext()),
              plainDocument("playdata(lticket payload=@)", b64(xml(head + "))"))));
    data.timedTextStreamPlayTimes = {{"", -1}};
    EXPECT_EQ(
        innerOf(RequestBuilder::buildRequest(data, plainContext())),
        xml(head + " timedtextstreamplaytimes(streamplaytime(downloadableid playtime=-1))))"));
}

TEST(LogblobRequest, AnyBytesSurviveAndEmptyGivesEmptyElement) {
    const std::string log("a\0b\x80\xff\n", 6);
    EXPECT_EQ(RequestBuilder::buildRequest(LogblobRequestData{header(), -3, log}, plainContext()),
              plainDocument("logblob(sequencenumber=-3 logdata=" + b64(log) + ")"));
    EXPECT_EQ(RequestBuilder::buildRequest(LogblobRequestData{header(), 0, ""}, plainContext()),
              plainDocument("logblob(sequencenumber=0 logdata)"));
}

} // namespace
