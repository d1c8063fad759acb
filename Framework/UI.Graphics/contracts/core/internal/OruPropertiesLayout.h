#pragma once

#include "contracts/core/OruPropertiesString.h"

#include <QString>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

/// The keys that the nodes of one type have in common, and the slots that they began with. Not part of the
/// public interface.
///
/// A layout is one row more than another layout; the first one of a group has no row. It never changes.
/// Nodes that bind the same keys in the same order, with the same defaults, get there by the same steps, so
/// they share the last layout and need no slots of their own. A layout keeps the steps that lead on from it
/// for the next node, as long as the group lives and up to a limit; what is beyond belongs to the node that
/// went there.
class OruPropertiesLayout
    : public boost::intrusive_ref_counter<OruPropertiesLayout, boost::thread_unsafe_counter>
{
public:
    using Pointer = boost::intrusive_ptr<OruPropertiesLayout>;
    using Slot = OruPropertiesString::Slot;

    /// The layout without a row.
    OruPropertiesLayout() = default;
    OruPropertiesLayout(const OruPropertiesLayout&) = delete;
    OruPropertiesLayout& operator=(const OruPropertiesLayout&) = delete;

    /// Number of rows.
    std::size_t size() const { return size_; }

    /// The last row; there must be one. Its index is its place among all rows.
    const QString& key() const { return key_; }
    const Slot& slot() const { return slot_; }
    std::size_t index() const { return size_ - 1; }

    /// The layout that ends with the row of `key`; null when there is no such row.
    const OruPropertiesLayout* find(const QString& key) const;

    /// All layouts on the way here, the first row first.
    std::vector<const OruPropertiesLayout*> rows() const;

    /// This layout and one more row.
    Pointer with(const QString& key, const Slot& slot);

    /// This layout with another slot in one of its rows. Null: so many nodes have one of their own already
    /// that sharing it is not worth while.
    Pointer withSlot(std::size_t index, const Slot& slot);

private:
    OruPropertiesLayout(OruPropertiesLayout& parent, const QString& key, const Slot& slot);

    /// One that leads on from here, and the hash of the text in its row: most others are told by that.
    struct Step
    {
        std::uint32_t textHash;
        Pointer layout;
    };

    bool isRow(const QString& key, const Slot& slot) const;
    OruPropertiesLayout* step(const QString& key, const Slot& slot) const;
    bool keepsStep(const QString& key) const;

    /// Borrowed from the group, or else from owner_; null without a row.
    OruPropertiesLayout* parent_ = nullptr;
    /// The parent when no group keeps this layout.
    Pointer owner_;
    std::size_t size_ = 0;
    QString key_;
    Slot slot_;
    std::vector<Step> steps_;
};
