// Suspended connections resumed at their deadlines.
#include "http/ResumeTimer.h"

namespace zuvocli {

ResumeTimer::ResumeTimer() : thread([this] { run(); }) {}

ResumeTimer::~ResumeTimer() {
    stop();
}

void ResumeTimer::resumeAt(Clock::time_point when, MHD_Connection* connection) {
    {
        std::lock_guard<std::mutex> hold(lock);
        if (!stopping) {
            waiting.emplace(when, connection);
            changed.notify_one();
            return;
        }
    }
    MHD_resume_connection(connection);
}

void ResumeTimer::stop() {
    {
        std::lock_guard<std::mutex> hold(lock);
        if (stopping)
            return;
        stopping = true;
        changed.notify_one();
    }
    thread.join();
}

void ResumeTimer::run() {
    std::unique_lock<std::mutex> hold(lock);
    for (;;) {
        if (stopping) {
            // The answers still held back go out now.
            for (; !waiting.empty(); waiting.pop())
                MHD_resume_connection(waiting.top().second);
            return;
        }
        if (waiting.empty()) {
            changed.wait(hold);
            continue;
        }
        const Entry next = waiting.top();
        if (Clock::now() < next.first) {
            changed.wait_until(hold, next.first);
            continue;
        }
        waiting.pop();
        MHD_resume_connection(next.second);
    }
}

} // namespace zuvocli
