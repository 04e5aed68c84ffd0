// The device sessions of `zuvo serve`: one scripted server per device,
// found again by what it issued to that device, so that many devices run
// whole sessions at once without seeing each other's state.
#ifndef ZUVO_TOOL_DEVICESESSIONS_H
#define ZUVO_TOOL_DEVICESESSIONS_H

#include "server/ScriptedServer.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace zuvocli {

/// Every device's session, indexed by what identifies the device in a
/// request: the registration code it was given (registration), the movie
/// ticket (play data), the rc it registered with (renewal, provisioning,
/// registering again) and the server time of its last answer, which a device
/// echoes in its next header (every other message). Pre-registration, and a
/// request that matches no session, starts a fresh one. Requests of one
/// device are answered in turn; those of different devices in parallel,
/// and the index is held only to look up and to file what was issued.
/// Safe to use from several threads.
class DeviceSessions {
public:
    /// Sessions unused for `idle` are dropped, so memory stays bounded over a
    /// long run.
    DeviceSessions(const CipherContext& context, std::chrono::milliseconds idle);
    ~DeviceSessions();

    /// The answer to `request` from its device's session. Throws
    /// std::runtime_error as ScriptedServer::answer does.
    std::string answer(const OpenedRequest& request, const ResponseVariation& variation);

    /// The number of sessions kept.
    std::size_t size() const;

private:
    struct Device;
    typedef std::shared_ptr<Device> DevicePtr;

    /// The device `request` belongs to, or a fresh one (not yet indexed).
    DevicePtr find(const OpenedRequest& request);
    /// Files what `device` has issued under the index; index lock held.
    void file(const DevicePtr& device);
    /// Drops sessions idle for longer than `idle`; index lock held.
    void sweep(std::chrono::steady_clock::time_point now);

    CipherContext context;
    std::chrono::steady_clock::duration idle;
    mutable std::mutex lock;
    std::unordered_map<std::string, DevicePtr> index;
    std::size_t devices = 0;
    std::chrono::steady_clock::time_point lastSweep;
};

} // namespace zuvocli

#endif
