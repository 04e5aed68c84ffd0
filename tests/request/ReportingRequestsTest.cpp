// Play data and log chunks: raw ticket bytes, optional stream lists, binary logs.

#include "request/MessageTestSupport.h"

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
    data.lticket.clear();
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext())
                  .find("\t\t<zuvo:lticket/>\n\t\t<zuvo:payload>"),
              std::string::npos);
}

TEST(PlaydataRequest, EmptyListsWriteNoWrapper) {
    PlaydataRequestData data;
    data.eventMovieTime = -5;
    const std::string head = lines({"0<zuvo:playdata>", "1<zuvo:movieid>0</zuvo:movieid>",
                                    "1<zuvo:lamovietime>0</zuvo:lamovietime>",
                                    "1<zuvo:eventmovietime>-5</zuvo:eventmovietime>",
                                    "1<zuvo:playbacktime>", "2<zuvo:total>0</zuvo:total>"});
    const std::string tail = lines({"1</zuvo:playbacktime>", "0</zuvo:playdata>"});
    EXPECT_EQ(innerOf(RequestBuilder::buildRequest(data, plainContext())), head + tail);

    data.timedTextStreamPlayTimes = {{"", -1}};
    EXPECT_EQ(innerOf(RequestBuilder::buildRequest(data, plainContext())),
              head +
                  lines({"2<zuvo:timedtextstreamplaytimes>", "3<zuvo:streamplaytime>",
                         "4<zuvo:downloadableid/>", "4<zuvo:playtime>-1</zuvo:playtime>",
                         "3</zuvo:streamplaytime>", "2</zuvo:timedtextstreamplaytimes>"}) +
                  tail);
}

TEST(LogblobRequest, AnyBytesSurviveAndEmptyGivesEmptyElement) {
    LogblobRequestData data;
    data.sequenceNumber = -3;
    data.logData = std::string("a\0b\x80\xff\n", 6);
    const std::string doc = RequestBuilder::buildRequest(data, plainContext());
    const std::string open = "<zuvo:logdata>";
    const std::size_t from = doc.find(open) + open.size();
    EXPECT_EQ(Velmora::QRXClient::Base64::decode(doc.substr(from, doc.find('<', from) - from)),
              data.logData);
    EXPECT_NE(doc.find("<zuvo:sequencenumber>-3<"), std::string::npos);
    data.logData.clear();
    EXPECT_NE(RequestBuilder::buildRequest(data, plainContext()).find("\t\t<zuvo:logdata/>\n"),
              std::string::npos);
}

} // namespace
