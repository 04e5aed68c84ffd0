// Reports sent after playback: play data (ticket in clear, statistics as
// payload) and log chunks (Base64, never encrypted).

#include "request/Envelope.h"

#include <QRXClient/lexical_cast.h>

namespace velmora {
namespace zuvolib {

namespace {

using Velmora::QRXClient::lexical_cast;

// The per-stream play time lists, each under its own wrapper element.
const struct {
    const char* wrapper;
    std::vector<StreamPlayTime> PlaydataRequestData::*times;
} STREAM_LISTS[] = {
    {"zuvo:videostreamplaytimes", &PlaydataRequestData::videoStreamPlayTimes},
    {"zuvo:audiostreamplaytimes", &PlaydataRequestData::audioStreamPlayTimes},
    {"zuvo:timedtextstreamplaytimes", &PlaydataRequestData::timedTextStreamPlayTimes},
};

} // namespace

std::string RequestBuilder::buildRequest(const PlaydataRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:playdata");
    builder.addChild("zuvo:lticket");
    // The ticket's bytes become the element text one for one.
    builder.addValue(std::string(data.lticket.begin(), data.lticket.end()));
    builder.addSibling("zuvo:payload");
    builder.addValue(makePlaydataPayload(data, context));
    return getXml(builder);
}

std::string RequestBuilder::makePlaydataPayload(const PlaydataRequestData& data,
                                                const CipherContext& context) {
    TagBuilder inner("zuvo:playdata");
    makePlaydataPayloadBody(data, inner);
    return encryptEncode(inner, context);
}

void RequestBuilder::makePlaydataPayloadBody(const PlaydataRequestData& data, TagBuilder& builder) {
    builder.addChild("zuvo:movieid");
    builder.addValue(lexical_cast<std::string>(data.movieId));
    builder.addSibling("zuvo:lamovietime");
    builder.addValue(lexical_cast<std::string>(data.laMovieTime));
    builder.addSibling("zuvo:eventmovietime");
    builder.addValue(lexical_cast<std::string>(data.eventMovieTime));
    builder.addSibling("zuvo:playbacktime");
    builder.addChild("zuvo:total");
    builder.addValue(lexical_cast<std::string>(data.totalPlaybackTime));
    // An empty list writes no wrapper at all.
    for (const auto& list : STREAM_LISTS) {
        const std::vector<StreamPlayTime>& times = data.*list.times;
        if (times.empty())
            continue;
        builder.addToParent("zuvo:playbacktime", list.wrapper);
        builder.current->children.reserve(times.size()); // room for the entries at once
        for (const StreamPlayTime& entry : times) {
            builder.addToParent(list.wrapper, "zuvo:streamplaytime");
            builder.addChild("zuvo:downloadableid");
            builder.addValue(entry.downloadableId);
            builder.addSibling("zuvo:playtime");
            builder.addValue(lexical_cast<std::string>(entry.playTime));
        }
    }
}

std::string RequestBuilder::buildRequest(const LogblobRequestData& data,
                                         const CipherContext& context) {
    TagBuilder builder = beginRequest(data, context, "zuvo:logblob");
    builder.addChild("zuvo:sequencenumber");
    builder.addValue(lexical_cast<std::string>(data.sequenceNumber));
    builder.addSibling("zuvo:logdata");
    builder.addValue(base64encode(data.logData));
    return getXml(builder);
}

} // namespace zuvolib
} // namespace velmora
