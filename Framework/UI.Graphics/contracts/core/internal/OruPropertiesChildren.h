#pragma once

#include "contracts/core/internal/OruPropertiesNames.h"

#include <QString>

#include <cstddef>
#include <vector>

class OruProperties;

/// The children of a node, in order and by name. Not part of the public interface.
///
/// A child knows its place here, so that it is taken out in O(1) and leaves a gap. Gaps are closed, in O(n),
/// when somebody asks for a child by its number, or once there are as many of them as children.
class OruPropertiesChildren
{
public:
    std::size_t size() const { return entries_.size() - first_ - gaps_; }

    OruProperties* at(std::size_t position) const;

    /// The position of a child that is here.
    std::size_t index(const OruProperties& child) const;

    OruProperties* find(const QString& name) const { return byName_.find(name); }

    /// The same; fast where the child is at the position `guess`.
    OruProperties* find(const QString& name, std::size_t guess) const;

    void append(OruProperties* node);

    /// Takes out a child that is here.
    void remove(const OruProperties& child);

    /// Takes out the last child, of which there must be one; find() is not asked any more.
    OruProperties* takeLast();

    /// A child bears another name now.
    void rename(const QString& oldName, OruProperties& child);

private:
    void trim();
    void closeGaps() const;

    /// Null: a gap. None at the end; `first_` at the front, `gaps_` in between.
    mutable std::vector<OruProperties*> entries_;
    mutable std::size_t first_ = 0;
    mutable std::size_t gaps_ = 0;
    OruPropertiesNames byName_;
};
