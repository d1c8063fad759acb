#pragma once

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruViewPtr.h"
#include "contracts/core/kelvar_core_api.h"

#include <cstdint>

/// The change record of one node in a tree.
///
/// A change is noted once, at the node, and carried to the root: O(depth). Whether anything changed at a node
/// or anywhere below it is then a comparison of two numbers: O(1), however large the subtree is.
class KELVAR_CORE_API OruModified
{
public:
    /// A new record, which counts as changed. `sharedGroup` must outlive it.
    explicit OruModified(OruModifiedGroup& sharedGroup);

    /// A copy is a new node in the same group, outside of any tree. Its place is never copied.
    OruModified(const OruModified& other);

    /// Assignment changes the content, so it notes a change; the place in the tree stays.
    OruModified& operator=(const OruModified& other);

    /// Shared by all nodes of the tree; handed to the constructors of children.
    OruModifiedGroup& group;

    /// Grows with each change of this node itself.
    std::uint64_t revision() const { return revision_; }

    /// Grows with each change of this node or of any node below it.
    std::uint64_t subtreeRevision() const { return subtreeRevision_; }

    /// Notes a change of this node.
    void touch();

    /// Where view_ptr is told of this node's end.
    using Viewed = OruModified;
    const oru::view_anchor<OruModified>& viewAnchor() const { return viewAnchor_; }

protected:
    ~OruModified();

    OruModified* parentRecord() const { return parentRecord_; }

    /// A change was carried through this node: `origin`, somewhere below it, was touched, and `child` is the
    /// direct child on the way there. Nothing happens here. The hook for who wants to know what has changed
    /// without a look at all children; it must change nothing in the tree. Both may be dying, so that nothing
    /// but their addresses counts.
    virtual void noteChange(const OruModified& child, const OruModified& origin);

    /// Makes `parent` (null: nothing) the record to which changes are carried. Notes no change by itself.
    void setParentRecord(OruModified* parent) { parentRecord_ = parent; }

private:
    OruModified* parentRecord_ = nullptr;
    std::uint64_t revision_;
    std::uint64_t subtreeRevision_;
    oru::view_anchor<OruModified> viewAnchor_;
};
