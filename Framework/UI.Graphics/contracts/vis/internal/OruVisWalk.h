#pragma once

#include "contracts/vis/OruVisualization.h"

#include <QSet>

#include <algorithm>
#include <utility>
#include <vector>

/// One pass on its way over the entries of a list. The list knows it, so what leaves the list leaves the
/// walk, and no dead one is ever reached.
class OruVisWalk
{
public:
    using Objects = std::vector<OruVisualization*>;

    /// `innermost` is the list's note of the walks that are under way, innermost first.
    OruVisWalk(OruVisWalk*& innermost, Objects objects)
        : innermost_(&innermost)
        , objects_(std::move(objects))
        , outer_(innermost)
    {
        innermost = this;
    }
    ~OruVisWalk()
    {
        if (innermost_) {
            *innermost_ = outer_;
        }
    }
    OruVisWalk(const OruVisWalk&) = delete;
    OruVisWalk& operator=(const OruVisWalk&) = delete;

    template <typename Operation>
    void run(Operation operation)
    {
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            // Thousands of objects lie all over the memory: one is fetched while the one before is at work.
            __builtin_prefetch(objects_[std::min(i + 1, objects_.size() - 1)]);
            if (!left_.contains(objects_[i])) {
                operation(*objects_[i]);
            }
        }
    }

    /// Passes over this object from now on; it may be dying. What comes to be at its address is none of the
    /// objects of this walk.
    void leaveOut(const OruProperties* child) { left_.insert(child); }

    /// The list is dying: nothing is left to reach.
    void end()
    {
        innermost_ = nullptr;
        objects_.clear();
    }

    bool listLives() const { return innermost_; }
    OruVisWalk* outer() const { return outer_; }

private:
    OruVisWalk** innermost_;
    Objects objects_;
    QSet<const OruProperties*> left_;
    OruVisWalk* outer_;
};
