// The scripted server's answer to authorization: the playback catalogue
// for the requested profiles and the movie ticket.
#include "server/AnswerWriting.h"

#include "capture/XmlTree.h"

#include <QRXClient/Base64.h>
#include <zuvolib/subparsers/ContentProfile.h>

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

/// The two content delivery networks of the demo: name, id, rank, weight.
struct Cdn {
    const char* name;
    unsigned int id, rank, weight;
    const char* host;
};
const Cdn CDNS[] = {
    {"cdn-alpha", 1, 1, 70, "http://alpha.cdn.example"},
    {"cdn-beta", 2, 2, 30, "http://beta.cdn.example"},
};

/// The demo's video ladder, one rung per requested video profile.
struct Rung {
    unsigned int bitrate, width, height;
};
const Rung VIDEO_LADDER[] = {{1750, 1280, 720}, {3000, 1280, 720}, {5800, 1920, 1080}};

/// "downloadurls" with one URL per CDN for `id`.
void writeDownloadUrls(ElementWriter& out, const std::string& id, unsigned int expiration) {
    out.open("zuvo:downloadurls");
    for (const Cdn& cdn : CDNS) {
        out.open("zuvo:downloadurl")
            .leaf("zuvo:expiration", expiration)
            .leaf("zuvo:cdnid", cdn.id)
            .leaf("zuvo:url", std::string(cdn.host) + "/" + id)
            .close();
    }
    out.close();
}

void writeLanguage(ElementWriter& out, const char* display, const char* iso1, const char* iso2) {
    out.open("zuvo:language")
        .leaf("zuvo:displaytext", display)
        .leaf("zuvo:iso639-1", iso1)
        .leaf("zuvo:iso639-2", iso2)
        .leaf("zuvo:iso639-3", iso2)
        .close();
}

/// The identifiers of the profile elements under `list` that have one.
std::vector<std::string> requestedProfiles(const XmlElement& list, const std::string& item) {
    std::vector<std::string> identifiers;
    for (const XmlElement* profile : list.all(item)) {
        if (zl::stringToProfile(profile->text) != zl::PROFILE_UNKNOWN)
            identifiers.push_back(profile->text);
    }
    return identifiers;
}

} // namespace

void ScriptedServer::answerAuthorization(const XmlElement& message, std::size_t downloadables,
                                         Result& result) {
    movieId = std::stoi("0" + message.child("zuvo:movieid").text);
    if (movieId <= 0)
        refuse("movie id '" + message.child("zuvo:movieid").text + "' is not a title");
    const XmlElement& profiles = message.child("zuvo:contentprofiles");
    const std::vector<std::string> video =
        requestedProfiles(profiles.child("zuvo:videoprofiles"), "zuvo:videoprofile");
    const std::vector<std::string> audio =
        requestedProfiles(profiles.child("zuvo:audioprofiles"), "zuvo:audioprofile");
    const std::vector<std::string> timedText =
        requestedProfiles(profiles.child("zuvo:timedtextprofiles"), "zuvo:timedtextprofile");
    if (video.empty() || audio.empty())
        refuse("no known video or audio profile was offered");

    mticket = Velmora::QRXClient::Base64::encode("MT-" + std::to_string(movieId) + "-" +
                                                 std::to_string(serverTime));
    const unsigned int expiration = serverTime + 86400u;
    const std::string payload =
        sealPayload("<zuvo:mticket expiration=\"" + std::to_string(expiration) + "\">" + mticket +
                    "</zuvo:mticket>");
    const std::string movie = std::to_string(movieId);

    result.method = "authorization";
    result.body = [=](ElementWriter& out) {
        out.open("zuvo:authorization").attribute("movie_id", movie);
        out.open("zuvo:cdns");
        for (const Cdn& cdn : CDNS) {
            out.open("zuvo:cdn")
                .leaf("zuvo:name", cdn.name)
                .leaf("zuvo:cdnid", cdn.id)
                .leaf("zuvo:rank", cdn.rank)
                .leaf("zuvo:weight", cdn.weight)
                .close();
        }
        out.close();

        // One rung per requested profile, or as many as asked for, the
        // profiles taken round.
        const std::size_t rungs = sizeof VIDEO_LADDER / sizeof VIDEO_LADDER[0];
        const std::size_t count = downloadables ? downloadables : video.size();
        for (std::size_t i = 0; i < count; ++i) {
            const Rung& rung = VIDEO_LADDER[i < rungs ? i : rungs - 1];
            const std::string id = "v" + movie + "-" + std::to_string(i + 1);
            out.open("zuvo:videodownloadable")
                .leaf("zuvo:downloadableid", id)
                .leaf("zuvo:size", 1000ull * rung.bitrate / 8 * 5400)
                .leaf("zuvo:bitrate", rung.bitrate);
            if (rung.height >= 1080)
                out.leaf("zuvo:hd", "true");
            out.leaf("zuvo:videoprofile", video[i % video.size()]);
            out.open("zuvo:resolution")
                .leaf("zuvo:width", rung.width)
                .leaf("zuvo:height", rung.height)
                .close();
            out.open("zuvo:pixelaspect").leaf("zuvo:width", 1).leaf("zuvo:height", 1).close();
            writeDownloadUrls(out, id, expiration);
            out.close();
        }

        const char* const languages[][3] = {{"English", "en", "eng"}, {"French", "fr", "fra"}};
        for (std::size_t t = 0; t < 2; ++t) {
            out.open("zuvo:audiotrack");
            writeLanguage(out, languages[t][0], languages[t][1], languages[t][2]);
            if (t == 0)
                out.leaf("zuvo:isnative", "true");
            for (std::size_t i = 0; i < audio.size(); ++i) {
                const std::string id = "a" + movie + "-" + languages[t][1] + std::to_string(i + 1);
                const unsigned int bitrate = i == 0 ? 96 : 384;
                out.open("zuvo:audiodownloadable")
                    .leaf("zuvo:downloadableid", id)
                    .leaf("zuvo:size", 5400ull * bitrate * 1000 / 8)
                    .leaf("zuvo:bitrate", bitrate)
                    .leaf("zuvo:audioprofile", audio[i]);
                writeDownloadUrls(out, id, expiration);
                out.close();
            }
            out.close();
        }

        if (!timedText.empty()) {
            out.open("zuvo:timedtexttrack").leaf("zuvo:timedtexttype", "subtitles");
            writeLanguage(out, "English", "en", "eng");
            for (std::size_t i = 0; i < timedText.size(); ++i) {
                const std::string id = "t" + movie + "-en" + std::to_string(i + 1);
                out.open("zuvo:timedtextdownloadable")
                    .leaf("zuvo:downloadableid", id)
                    .leaf("zuvo:size", 48213)
                    .leaf("zuvo:timedtextprofile", timedText[i]);
                writeDownloadUrls(out, id, expiration);
                out.close();
            }
            out.close();
        }

        out.open("zuvo:trickplay")
            .leaf("zuvo:trickplayid", 1)
            .leaf("zuvo:trickplayinterval", 10)
            .leaf("zuvo:size", 2097152);
        out.open("zuvo:resolution").leaf("zuvo:width", 320).leaf("zuvo:height", 180).close();
        out.open("zuvo:pixelaspect").leaf("zuvo:width", 1).leaf("zuvo:height", 1).close();
        writeDownloadUrls(out, "trick" + movie, expiration);
        out.close();

        out.open("zuvo:streamingparams");
        out.open("zuvo:streamingparam")
            .leaf("zuvo:name", "minbuffermillis")
            .leaf("zuvo:value", "2000")
            .close();
        out.open("zuvo:streamingparam")
            .leaf("zuvo:name", "maxbitrate")
            .leaf("zuvo:value", "5800")
            .close();
        out.close();

        out.leaf("zuvo:payload", payload);
        out.close();
    };
}

} // namespace zuvocli
