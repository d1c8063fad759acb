#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace hostkit {

/// One thread of the process for work that nobody waits for, one piece after the other. It starts with the
/// first piece and ends with the process.
class BackgroundThread
{
public:
    /// A piece of work.
    class Work
    {
    public:
        Work() = default;
        virtual ~Work() = default;
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

        /// Called in the thread. What it throws goes unheard.
        virtual void run() = 0;

        /// Called in any thread at any time: run() returns soon.
        virtual void stop() = 0;
    };

    static BackgroundThread& instance();

    /// Stops what runs, leaves the rest undone.
    ~BackgroundThread();
    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;

    /// Work begins as much later, so that the frame that wanted it has the processors for itself.
    static constexpr std::chrono::milliseconds pause{100};

    /// Where no thread can be had, the work is left undone.
    void add(std::shared_ptr<Work> work);

private:
    using Clock = std::chrono::steady_clock;

    struct Waiting
    {
        Clock::time_point due;
        std::shared_ptr<Work> work;
    };

    BackgroundThread() = default;
    bool start();
    void runAll();
    void runFirst(std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Waiting> waiting_;
    /// Null between two pieces.
    std::shared_ptr<Work> running_;
    bool ending_ = false;
    std::thread thread_;
};

} // namespace hostkit
