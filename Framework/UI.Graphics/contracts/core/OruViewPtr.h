#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <type_traits>

namespace oru {

/// What an object and the views of it share: where the object is, as long as it lives.
class KELVAR_CORE_API view_record
{
public:
    explicit view_record(const void* viewed)
        : object(viewed)
    {}
    view_record(const view_record&) = delete;
    view_record& operator=(const view_record&) = delete;

    /// Null once the object has died.
    const void* object;

private:
    friend void intrusive_ptr_add_ref(view_record* record) { ++record->holders_; }
    friend KELVAR_CORE_API void intrusive_ptr_release(view_record* record);

    unsigned holders_ = 0;
};

/// The end of a view_ptr that the viewed object holds as a member: it tells all views when the object dies.
///
/// Costs a pointer until the first view asks for it. Copies and assignments of the object have views of their
/// own.
template <typename Object>
class view_anchor
{
public:
    view_anchor() = default;
    view_anchor(const view_anchor&) = delete;
    view_anchor& operator=(const view_anchor&) = delete;
    ~view_anchor()
    {
        if (record_) {
            record_->object = nullptr;
        }
    }

    /// What all views of `object`, whose member this is, share.
    const boost::intrusive_ptr<view_record>& share(const Object& object) const
    {
        if (!record_) {
            record_ = new view_record(&object);
        }
        return record_;
    }

private:
    mutable boost::intrusive_ptr<view_record> record_;
};

/// A pointer that owns nothing and becomes null when its object dies.
///
/// T is, or derives from, a class that names itself `Viewed` and offers `const oru::view_anchor<Viewed>&
/// viewAnchor() const`. A view takes as much room as a pointer, and a test costs two loads. One thread only.
template <typename T>
class view_ptr
{
public:
    view_ptr() = default;
    explicit view_ptr(T& target)
        : record_(target.viewAnchor().share(target))
    {}

    /// The object, or null when there never was one or it has died.
    T* get() const { return *this ? target() : nullptr; }

    /// The object must be alive.
    T* operator->() const { return target(); }
    T& operator*() const { return *target(); }

    explicit operator bool() const { return record_ && record_->object; }

private:
    /// The view was made of a T, so it may be as constant as that and no more.
    T* target() const
    {
        using Viewed = typename std::remove_const_t<T>::Viewed;
        return static_cast<T*>(const_cast<Viewed*>(static_cast<const Viewed*>(record_->object)));
    }

    boost::intrusive_ptr<view_record> record_;
};

} // namespace oru
