#include "hosts/widgets/internal/PropertyRow.h"

#include "hosts/widgets/internal/PropertyFilter.h"

#include <QStringList>

namespace hostkit {

/// A row with nothing below needs no fetching, so that a view shows no arrow in front of it.
PropertyRow::PropertyRow(PropertyRow& above, const PropertySubject& subject, const PropertyFilter& filter)
    : parent(&above)
    , property(subject.property)
    , key(subject.key)
    , node_(*subject.node)
{
    refresh();
    revision = subject.node->revision();
    subtreeRevision = subject.node->subtreeRevision();
    whole = isWhole(filter);
    fetched = property || (whole && subject.node->size() == 0 && subject.node->string().keys().isEmpty());
}

std::vector<PropertySubject> PropertyRow::wanted(PropertyFilter& filter) const
{
    std::vector<PropertySubject> subjects;
    OruProperties* const node = node_.get();
    for (const QString& each : node->string().keys()) {
        if (whole || filter.takes(*node, each)) {
            subjects.push_back({node, each, true});
        }
    }
    for (unsigned int i = 0; i < node->size(); ++i) {
        if (whole || filter.reaches(*node->at(i))) {
            subjects.push_back({node->at(i), QString(), false});
        }
    }
    return subjects;
}

QString PropertyRow::path() const
{
    QStringList names;
    for (const PropertyRow* row = property ? parent : this; row->parent && row->parent->parent;
         row = row->parent) {
        names.prepend(row->name);
    }
    return names.join(QLatin1Char('/'));
}

bool PropertyRow::refresh()
{
    const OruProperties* const node = node_.get();
    QString newText = node->type();
    QString newUnit;
    if (property) {
        node->getValue(key, newText, QString());
        newUnit = node->string().getUnit(key, QString());
    }
    const QString& newName = property ? key : node->name();
    const bool changed = newName != name || newText != text || newUnit != unit;
    name = newName;
    text = newText;
    unit = newUnit;
    return changed;
}

bool PropertyRow::isWhole(const PropertyFilter& filter) const
{
    return parent->whole || (!property && filter.takes(name));
}

void PropertyRow::number(std::size_t first)
{
    for (std::size_t i = first; i < rows.size(); ++i) {
        rows[i]->position = static_cast<int>(i);
    }
}

} // namespace hostkit
