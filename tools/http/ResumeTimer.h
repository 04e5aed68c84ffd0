// Answers held back by a scenario's delay wait here, not on a thread of the
// daemon's pool: the connection is suspended, and this timer resumes it when
// its time has come.
#ifndef ZUVO_TOOL_RESUMETIMER_H
#define ZUVO_TOOL_RESUMETIMER_H

#include <microhttpd.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <queue>
#include <thread>
#include <utility>
#include <vector>

namespace zuvocli {

/// One thread resuming suspended connections at their deadlines.
class ResumeTimer {
public:
    typedef std::chrono::steady_clock Clock;

    ResumeTimer();
    /// Stops, resuming whatever still waits.
    ~ResumeTimer();
    ResumeTimer(const ResumeTimer&) = delete;
    ResumeTimer& operator=(const ResumeTimer&) = delete;

    /// Resumes `connection`, suspended by the caller, at `when`; at once
    /// once the timer is stopping.
    void resumeAt(Clock::time_point when, MHD_Connection* connection);

    /// Resumes every waiting connection now and ends the thread; a later
    /// `resumeAt` resumes at once. The daemon can then be stopped, which it
    /// cannot while connections are suspended.
    void stop();

private:
    typedef std::pair<Clock::time_point, MHD_Connection*> Entry;

    void run();

    std::mutex lock;
    std::condition_variable changed;
    /// Earliest deadline first.
    std::priority_queue<Entry, std::vector<Entry>, std::greater<Entry>> waiting;
    bool stopping = false;
    std::thread thread;
};

} // namespace zuvocli

#endif
