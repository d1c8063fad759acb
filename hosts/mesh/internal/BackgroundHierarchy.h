#pragma once

#include "contracts/math/Vector3.h"
#include "hosts/mesh/TriangleHierarchy.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace hostkit {

/// A TriangleHierarchy that is built in the background thread.
class BackgroundHierarchy
{
public:
    /// Starts soon. The arrays are borrowed, as TriangleHierarchy says.
    BackgroundHierarchy(const std::vector<Kelvar::Math::Vector3>& positions,
                        const std::vector<uint32_t>& indices);

    /// Stops the work and waits until it has left the arrays alone.
    ~BackgroundHierarchy();
    BackgroundHierarchy(const BackgroundHierarchy&) = delete;
    BackgroundHierarchy& operator=(const BackgroundHierarchy&) = delete;

    /// Null: it is not ready.
    const TriangleHierarchy* get() const;

private:
    class Work;

    /// Shared with the thread, which may come to it when nobody wants it any more.
    std::shared_ptr<Work> work_;
};

} // namespace hostkit
