#pragma once

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruViewPtr.h"

#include <QPair>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace hostkit {

class PropertyFilter;

/// What a row of a PropertyModel stands for: a node, or with a key a property of it.
struct PropertySubject
{
    using Id = QPair<const void*, QString>;

    OruProperties* node;
    QString key;
    bool property;

    /// To look it up by.
    Id id() const { return {node, property ? QLatin1Char('=') + key : QString()}; }
};

/// One row of a PropertyModel: a node, or a property of one, as a view has it. The tree may be ahead of it.
struct PropertyRow
{
    PropertyRow() = default;
    PropertyRow(PropertyRow& parent, const PropertySubject& subject, const PropertyFilter& filter);

    /// Null once the node is gone.
    OruProperties* node() const { return node_.get(); }

    /// What is to be below this row, in that order; its node lives.
    std::vector<PropertySubject> wanted(PropertyFilter& filter) const;

    /// What this row stands for; without a node if that is gone.
    PropertySubject subject() const { return {node_.get(), key, property}; }

    /// The names of the nodes from below the scene down to this row's.
    QString path() const;

    /// Takes the value over, or the name and type. True: they were others.
    bool refresh();

    /// Whether all of the node is shown, because it or a node above bears a name that is looked for.
    bool isWhole(const PropertyFilter& filter) const;

    /// Gives the rows from `first` on their numbers.
    void number(std::size_t first);

    PropertyRow* parent = nullptr;
    int position = 0;
    bool property = false;
    QString key;
    /// What the columns show; a node shows its type as value.
    QString name;
    QString text;
    QString unit;
    /// As of when; of a node alone.
    std::uint64_t revision = 0;
    std::uint64_t subtreeRevision = 0;
    bool whole = true;
    /// `rows` are made.
    bool fetched = false;
    std::vector<std::unique_ptr<PropertyRow>> rows;

private:
    oru::view_ptr<OruProperties> node_;
};

} // namespace hostkit
