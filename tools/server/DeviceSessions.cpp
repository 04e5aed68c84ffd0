// The device sessions of `zuvo serve`.
#include "server/DeviceSessions.h"

#include "capture/XmlTree.h"

#include <algorithm>
#include <vector>

namespace zuvocli {

struct DeviceSessions::Device {
    explicit Device(const CipherContext& context) : server(context) {}
    std::mutex lock; ///< held while the device's request is answered
    ScriptedServer server;
    std::vector<std::string> keys;              ///< under which the index files it; index lock
    std::chrono::steady_clock::time_point used; ///< index lock
};

namespace {

/// The index keys of what `server` has issued; empty for a device that holds
/// nothing worth finding again (one that only pinged).
std::vector<std::string> issuedKeys(const ScriptedServer& server) {
    std::vector<std::string> keys;
    if (!server.registrationCode().empty())
        keys.push_back("code:" + server.registrationCode());
    if (!server.deviceRc().empty())
        keys.push_back("rc:" + server.deviceRc());
    if (!server.movieTicket().empty())
        keys.push_back("ticket:" + server.movieTicket());
    if (!keys.empty())
        keys.push_back("time:" + std::to_string(server.lastServerTime()));
    return keys;
}

/// The text of the element at `path` under `from`, or the empty string.
std::string textAt(const XmlElement* from, std::initializer_list<const char*> path) {
    for (const char* name : path) {
        if (!from)
            return std::string();
        from = from->find(name);
    }
    return from ? from->text : std::string();
}

/// The key that names the device of `request` by what it brings back, in
/// the order the message makes most specific; empty for none.
std::vector<std::string> requestKeys(const OpenedRequest& request) {
    std::vector<std::string> keys;
    const XmlElement& body = request.body();
    const std::string& name = request.message;
    if (name == "preregister")
        return keys; // always a fresh session
    if (name == "register" && body.find("zuvo:rendezvousreg"))
        keys.push_back("code:" + textAt(&body, {"zuvo:rendezvousreg", "zuvo:regcode"}));
    else if (name == "playdata")
        keys.push_back("ticket:" + textAt(&body, {"zuvo:lticket"}));
    else if (name == "x509provision" || name == "npticketprovision")
        keys.push_back("rc:" + textAt(&body, {"zuvo:provisiondata", "zuvo:rc"}));
    else if (name == "ecclinkprovision")
        keys.push_back("rc:" + textAt(&body, {"zuvo:ecclinkprovisiondata", "zuvo:rc"}));
    else if (request.inner && request.inner->find("zuvo:rc"))
        keys.push_back("rc:" + request.inner->find("zuvo:rc")->text);
    if (request.serverTime != 0)
        keys.push_back("time:" + std::to_string(request.serverTime));
    return keys;
}

} // namespace

DeviceSessions::DeviceSessions(const CipherContext& context, std::chrono::milliseconds idle)
    : context(context), idle(idle), lastSweep(std::chrono::steady_clock::now()) {}

DeviceSessions::~DeviceSessions() = default;

DeviceSessions::DevicePtr DeviceSessions::find(const OpenedRequest& request) {
    const std::vector<std::string> keys = requestKeys(request);
    const auto now = std::chrono::steady_clock::now();
    std::lock_guard<std::mutex> hold(lock);
    if (now - lastSweep >
        std::min<std::chrono::steady_clock::duration>(idle, std::chrono::seconds(1)))
        sweep(now);
    for (const std::string& key : keys) {
        const auto found = index.find(key);
        if (found != index.end()) {
            found->second->used = now;
            return found->second;
        }
    }
    auto device = std::make_shared<Device>(context);
    device->used = now;
    return device;
}

void DeviceSessions::file(const DevicePtr& device) {
    std::vector<std::string> keys = issuedKeys(device->server);
    if (device->keys.empty() && !keys.empty())
        ++devices;
    for (const std::string& old : device->keys) {
        if (std::find(keys.begin(), keys.end(), old) == keys.end()) {
            const auto entry = index.find(old);
            if (entry != index.end() && entry->second == device)
                index.erase(entry);
        }
    }
    // A key another session holds moves here: the newer issue wins.
    for (const std::string& key : keys) {
        DevicePtr& holder = index[key];
        if (holder && holder != device) {
            std::vector<std::string>& theirs = holder->keys;
            theirs.erase(std::remove(theirs.begin(), theirs.end(), key), theirs.end());
            if (theirs.empty())
                --devices;
        }
        holder = device;
    }
    device->keys = std::move(keys);
}

void DeviceSessions::sweep(std::chrono::steady_clock::time_point now) {
    lastSweep = now;
    for (auto entry = index.begin(); entry != index.end();) {
        Device& device = *entry->second;
        if (now - device.used > idle) {
            device.keys.erase(std::remove(device.keys.begin(), device.keys.end(), entry->first),
                              device.keys.end());
            if (device.keys.empty())
                --devices;
            entry = index.erase(entry);
        } else {
            ++entry;
        }
    }
}

std::string DeviceSessions::answer(const OpenedRequest& request,
                                   const ResponseVariation& variation) {
    const DevicePtr device = find(request);
    std::lock_guard<std::mutex> answering(device->lock);
    // A refused request issues nothing and leaves the device's keys as they
    // were: it goes on echoing the time of its last answer.
    std::string response = device->server.answer(request, variation);
    std::lock_guard<std::mutex> hold(lock);
    file(device);
    return response;
}

std::size_t DeviceSessions::size() const {
    std::lock_guard<std::mutex> hold(lock);
    return devices;
}

} // namespace zuvocli
