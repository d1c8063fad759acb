#include "hosts/mesh/internal/BackgroundThread.h"

#include <exception>
#include <system_error>
#include <utility>

namespace hostkit {

BackgroundThread& BackgroundThread::instance()
{
    static BackgroundThread thread;
    return thread;
}

BackgroundThread::~BackgroundThread()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ending_ = true;
        if (running_) {
            running_->stop();
        }
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void BackgroundThread::add(std::shared_ptr<Work> work)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    if (start()) {
        waiting_.push_back({Clock::now() + pause, std::move(work)});
        changed_.notify_all();
    }
}

bool BackgroundThread::start()
{
    if (!thread_.joinable()) {
        try {
            thread_ = std::thread([this] { runAll(); });
        } catch (const std::system_error&) {
            return false;
        }
    }
    return true;
}

void BackgroundThread::runAll()
{
    std::unique_lock<std::mutex> lock(mutex_);
    while (!ending_) {
        if (waiting_.empty()) {
            changed_.wait(lock);
        } else if (Clock::now() < waiting_.front().due) {
            changed_.wait_until(lock, waiting_.front().due);
        } else {
            runFirst(lock);
        }
    }
}

void BackgroundThread::runFirst(std::unique_lock<std::mutex>& lock)
{
    running_ = std::move(waiting_.front().work);
    waiting_.pop_front();
    lock.unlock();
    try {
        running_->run();
    } catch (const std::exception&) {
        // There was no memory for it.
    }
    lock.lock();
    running_.reset();
}

} // namespace hostkit
