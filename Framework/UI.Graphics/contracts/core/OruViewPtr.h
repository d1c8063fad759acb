#pragma once

#include <memory>

namespace oru {

/// The end of a view_ptr that the viewed object holds as a member: it tells all views when the object dies.
///
/// Costs nothing until the first view asks for it. Copies and assignments of the object have views of their
/// own.
class view_anchor
{
public:
    view_anchor() = default;
    view_anchor(const view_anchor&) = delete;
    view_anchor& operator=(const view_anchor&) = delete;
    ~view_anchor()
    {
        if (alive_) {
            *alive_ = false;
        }
    }

    /// The flag that all views of one object share; false once the object is gone.
    std::shared_ptr<const bool> share() const
    {
        if (!alive_) {
            alive_ = std::make_shared<bool>(true);
        }
        return alive_;
    }

private:
    mutable std::shared_ptr<bool> alive_;
};

/// A pointer that owns nothing and becomes null when its object dies.
///
/// T offers `const oru::view_anchor& viewAnchor() const`. A test costs two loads. One thread only.
template <typename T>
class view_ptr
{
public:
    view_ptr() = default;
    explicit view_ptr(T& target)
        : target_(&target)
        , alive_(target.viewAnchor().share())
    {}

    /// The object, or null when there never was one or it has died.
    T* get() const { return alive_ && *alive_ ? target_ : nullptr; }

    /// The object must be alive.
    T* operator->() const { return target_; }
    T& operator*() const { return *target_; }

    explicit operator bool() const { return get() != nullptr; }

private:
    T* target_ = nullptr;
    std::shared_ptr<const bool> alive_;
};

} // namespace oru
