#pragma once

#include "contracts/math/Vector3.h"
#include "contracts/vis/OruVisPickVolume.h"
#include "hosts/mesh/BoxTree.h"
#include "hosts/mesh/PickHit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace hostkit {

/// One pick of a shape: the window's frame and the best hit so far.
///
/// All is done in double, and as long as possible before the division by w: a half space of the window is
/// then a plane in the shape's frame also under perspective.
class PickQuery
{
public:
    /// For things that reach up to `rim` pixels beyond their boxes as seen on the screen. The volume outlives
    /// the query.
    explicit PickQuery(const OruVisPickVolume& volume, double rim = 0.0);

    /// False when nothing in the box can be a better hit.
    bool mayImprove(const BoxTree::Box& box) const
    {
        if (!depthLimit_.meets(box)) {
            return false;
        }
        return std::all_of(sides_.begin(), sides_.end(),
                           [&box](const HalfSpace& side) { return side.meets(box); });
    }

    /// Orders boxes by the nearest depth in them: larger is nearer to the eye.
    double nearness(const BoxTree::Box& box) const { return depthLimit_.farthest(box); }

    /// Of equal depths the pixel nearer to the window's center, then the lower number.
    const std::optional<PickHit>& best() const { return best_; }

protected:
    /// A linear function of the homogeneous point (x, y, z, 1) in the shape's frame.
    using Linear = std::array<double, 4>;

    /// A point of the shape in homogeneous window coordinates: x and y in pixels from the center of the
    /// window's first pixel, z the window depth, each times w.
    struct Corner
    {
        double x, y, z, w;
    };

    const OruVisPickVolume& volume() const { return volume_; }
    const Linear& x() const { return columns_[0]; }
    const Linear& y() const { return columns_[1]; }
    const Linear& z() const { return columns_[2]; }
    const Linear& w() const { return columns_[3]; }

    static double at(const Linear& f, const Kelvar::Math::Vector3& p)
    {
        return f[0] * p.x + f[1] * p.y + f[2] * p.z + f[3];
    }

    Corner corner(const Kelvar::Math::Vector3& p) const
    {
        return {at(x(), p), at(y(), p), at(z(), p), at(w(), p)};
    }

    /// The hit at a pixel of the window, counted from its first one, if it is better than the best so far;
    /// the depth is 0 to 1.
    std::optional<PickHit> better(double exactDepth, int column, int row, uint32_t item) const;

    /// Makes it the best hit.
    void take(const PickHit& hit);

    /// Takes the hit if it is better.
    void offer(double exactDepth, int column, int row, uint32_t item);

private:
    /// The half space where a linear function is not negative; answers for whole boxes.
    class HalfSpace
    {
    public:
        /// `magnitude` bounds the terms that `inside` was made from: what its rounding error is relative to.
        HalfSpace(const Linear& inside, const Linear& magnitude)
            : inside_(inside)
            , magnitude_(magnitude)
        {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                farthest_[axis] = inside[axis] > 0.0 ? axis + 3 : axis;
            }
        }

        /// The largest value of the function in the box.
        double farthest(const BoxTree::Box& box) const
        {
            return inside_[0] * box[farthest_[0]] + inside_[1] * box[farthest_[1]] +
                   inside_[2] * box[farthest_[2]] + inside_[3];
        }

        /// False when the box lies outside for certain, whatever the rounding.
        bool meets(const BoxTree::Box& box) const
        {
            const double value = farthest(box);
            return !(value < 0.0 && value < -roundingError * magnitudeIn(box));
        }

    private:
        /// Bound of the relative rounding error of the sums of a few products.
        static constexpr double roundingError = 1e-14;

        double magnitudeIn(const BoxTree::Box& box) const
        {
            double sum = magnitude_[3];
            for (std::size_t axis = 0; axis < 3; ++axis) {
                sum += magnitude_[axis] * std::abs(static_cast<double>(box[farthest_[axis]]));
            }
            return sum;
        }

        Linear inside_;
        Linear magnitude_;
        std::array<std::size_t, 3> farthest_{};
    };

    using Columns = std::array<Linear, 4>;

    static Columns windowColumns(const OruVisPickVolume& volume);
    static Linear absolute(Linear f);
    HalfSpace above(const Linear& f, double limit) const;
    HalfSpace below(const Linear& f, double limit) const;
    HalfSpace nearerThan(double depth) const { return below(z(), depth); }

    const OruVisPickVolume& volume_;
    Columns columns_;
    std::array<HalfSpace, 5> sides_;
    HalfSpace depthLimit_;
    std::optional<PickHit> best_;
};

} // namespace hostkit
