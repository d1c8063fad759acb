#include "hosts/host/EditStep.h"

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruText.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"

#include <algorithm>
#include <cmath>

namespace hostkit {

namespace {

/// What a change of a key is called; %1 is the node. The words for a flag that goes on and off may differ.
struct Verb
{
    const char* key;
    const char* text;
    const char* off;
};

const Verb verbs[] = {
    {"offset", "Move %1", nullptr},
    {"color", "Color %1", nullptr},
    {"marked", "Mark %1", "Unmark %1"},
    {"visible", "Show %1", "Hide %1"},
};

QString nodeName(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

/// "Turn view" where directions changed, else "Zoom view" where sizes did, else "Move view".
QString nameOfView(const EditStep::Change& change)
{
    constexpr float same = 1e-4f;
    Kelvar::Math::Matrix before;
    Kelvar::Math::Matrix after;
    oru::fromString(change.before, before);
    oru::fromString(change.after, after);
    const float zoom = after.transformDirection(Kelvar::Math::VectorX).length() /
                       before.transformDirection(Kelvar::Math::VectorX).length();
    for (const Kelvar::Math::Vector3& axis : {Kelvar::Math::VectorX, Kelvar::Math::VectorY}) {
        const Kelvar::Math::Vector3 was = before.transformDirection(axis) * zoom;
        if (!((after.transformDirection(axis) - was).length() <= same * was.length())) {
            return QStringLiteral("Turn view");
        }
    }
    return std::abs(zoom - 1.0f) > same ? QStringLiteral("Zoom view") : QStringLiteral("Move view");
}

QString nameOf(const EditStep::Change& change)
{
    if (change.key == QLatin1String("matrix")) {
        return nameOfView(change);
    }
    for (const Verb& verb : verbs) {
        if (change.key == QLatin1String(verb.key)) {
            const bool off = verb.off && change.after == QLatin1String("false");
            return QString::fromLatin1(off ? verb.off : verb.text)
                .replace(QLatin1String("%1"), nodeName(change.path));
        }
    }
    return QStringLiteral("Change %1 of %2").arg(change.key, nodeName(change.path));
}

void set(OruProperties& root, const EditStep::Change& change, const QString& value)
{
    OruProperties* const node = root.find(change.path);
    if (node && node->string().defined(change.key)) {
        node->setValue(change.key, value);
    }
}

} // namespace

void EditStep::add(const Change& change)
{
    const auto known = places_.constFind({change.path, change.key});
    if (known != places_.constEnd()) {
        changes_[*known].after = change.after;
    } else {
        places_.insert({change.path, change.key}, changes_.size());
        changes_.push_back(change);
    }
}

void EditStep::settle()
{
    const auto idle = [](const Change& change) { return change.before == change.after; };
    changes_.erase(std::remove_if(changes_.begin(), changes_.end(), idle), changes_.end());
    places_.clear();
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        places_.insert({changes_[i].path, changes_[i].key}, i);
    }
}

QString EditStep::name() const
{
    if (changes_.empty()) {
        return QString();
    }
    const QString first = nameOf(changes_.front());
    return changes_.size() == 1 ? first
                                : QStringLiteral("%1 and %2 more").arg(first).arg(changes_.size() - 1);
}

void EditStep::undo(OruProperties& root) const
{
    std::for_each(changes_.rbegin(), changes_.rend(),
                  [&](const Change& change) { set(root, change, change.before); });
}

void EditStep::redo(OruProperties& root) const
{
    for (const Change& change : changes_) {
        set(root, change, change.after);
    }
}

} // namespace hostkit
