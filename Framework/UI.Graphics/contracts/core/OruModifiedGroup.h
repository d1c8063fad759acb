#pragma once

#include "contracts/core/kelvar_core_api.h"

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>

class OruPropertiesLayout;

/// What the nodes of one property tree share: for change tracking the source of revision numbers and a lock,
/// and what nodes of one type have in common, so that each node keeps only what it does not share.
///
/// The group must outlive its nodes. A group on the stack or owned by a caller is left to that caller; one
/// that was made with `new` and handed over deletes itself together with its last node.
class KELVAR_CORE_API OruModifiedGroup
{
public:
    OruModifiedGroup();
    ~OruModifiedGroup();
    OruModifiedGroup(const OruModifiedGroup&) = delete;
    OruModifiedGroup& operator=(const OruModifiedGroup&) = delete;

    /// Gives this group, which must have been made with `new`, to its nodes for good: it is deleted when the
    /// last node that is attached to it dies. Returns the group, so that it can be handed to the first node
    /// at once. A group that never sees a node stays alive.
    OruModifiedGroup& handOver();

    /// True between lock() and its matching unlock(). Typed adaptors then read the store instead of their
    /// copy.
    bool locked() const { return locks_ > 0; }

    /// Locks are counted. An unlock() without a lock() does nothing.
    void lock() { ++locks_; }
    void unlock();

    /// A number greater than all that this group gave before; the first is 1.
    std::uint64_t nextRevision() { return ++revision_; }

    /// Called by each node as the first and the last thing that it does with the group. After detach() the
    /// group may be gone.
    void attach() { ++nodes_; }
    void detach();

private:
    friend class OruPropertiesString;

    boost::intrusive_ptr<OruPropertiesLayout> layout_;
    std::uint64_t revision_ = 0;
    std::size_t nodes_ = 0;
    unsigned locks_ = 0;
    bool handedOver_ = false;
};
