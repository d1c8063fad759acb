#include "hosts/mesh/internal/BackgroundHierarchy.h"

#include "hosts/mesh/internal/BackgroundThread.h"

#include <atomic>
#include <mutex>

namespace hostkit {

using Kelvar::Math::Vector3;

class BackgroundHierarchy::Work : public BackgroundThread::Work
{
public:
    Work(const std::vector<Vector3>& positions, const std::vector<uint32_t>& indices)
        : positions_(positions)
        , indices_(indices)
    {}

    void run() override
    {
        const std::lock_guard<std::mutex> lock(running_);
        if (stopped_) {
            return;
        }
        hierarchy_ = TriangleHierarchy::build(positions_, indices_, &stopped_);
        ready_.store(!stopped_, std::memory_order_release);
    }

    void stop() override { stopped_ = true; }

    void stopAndWait()
    {
        stop();
        const std::lock_guard<std::mutex> lock(running_);
    }

    const TriangleHierarchy* hierarchy() const
    {
        return ready_.load(std::memory_order_acquire) ? &hierarchy_ : nullptr;
    }

private:
    const std::vector<Vector3>& positions_;
    const std::vector<uint32_t>& indices_;
    std::atomic<bool> stopped_{false};
    std::atomic<bool> ready_{false};
    /// Held while the arrays are read.
    std::mutex running_;
    TriangleHierarchy hierarchy_;
};

BackgroundHierarchy::BackgroundHierarchy(const std::vector<Vector3>& positions,
                                         const std::vector<uint32_t>& indices)
    : work_(std::make_shared<Work>(positions, indices))
{
    BackgroundThread::instance().add(work_);
}

BackgroundHierarchy::~BackgroundHierarchy()
{
    work_->stopAndWait();
}

const TriangleHierarchy* BackgroundHierarchy::get() const
{
    return work_->hierarchy();
}

} // namespace hostkit
