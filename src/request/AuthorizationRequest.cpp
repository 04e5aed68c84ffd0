// The authorization request: which title to play and the content profiles
// the device can play, in clear text.

#include "request/Envelope.h"

#include <QRXClient/lexical_cast.h>

#include <utility>

namespace velmora {
namespace zuvolib {

namespace {

// The three profile lists: wrapper element, entry element, list.
const struct {
    const char* wrapper;
    const char* entry;
    std::vector<ContentProfile> AuthRequestData::*profiles;
} PROFILE_LISTS[] = {
    {"zuvo:videoprofiles", "zuvo:videoprofile", &AuthRequestData::videoProfiles},
    {"zuvo:audioprofiles", "zuvo:audioprofile", &AuthRequestData::audioProfiles},
    {"zuvo:timedtextprofiles", "zuvo:timedtextprofile", &AuthRequestData::timedTextProfiles},
};

} // namespace

std::string RequestBuilder::buildRequest(const AuthRequestData& data,
                                         const CipherContext& context) {
    using Velmora::QRXClient::lexical_cast;
    TagBuilder builder = beginRequest(data, context, "zuvo:authorization");
    builder.addChild("zuvo:movieid");
    builder.addValue(lexical_cast<std::string>(data.movieId));
    builder.addSibling("zuvo:trackid");
    builder.addValue(lexical_cast<std::string>(data.trackId));
    builder.addSibling("zuvo:contentprofiles");
    // Wrappers are written even for empty lists, and every entry gets an
    // element, empty when its value has no identifier, so that the element
    // count always matches the list.
    for (const auto& list : PROFILE_LISTS) {
        builder.addToParent("zuvo:contentprofiles", list.wrapper);
        const std::vector<ContentProfile>& profiles = data.*list.profiles;
        builder.current->children.reserve(profiles.size()); // room for the entries at once
        for (const ContentProfile profile : profiles) {
            builder.addToParent(list.wrapper, list.entry);
            std::string identifier = profileToString(profile);
            if (!identifier.empty())
                builder.addValue(std::move(identifier));
        }
    }
    return getXml(builder);
}

} // namespace zuvolib
} // namespace velmora
