#include "hosts/widgets/internal/PropertyFilter.h"

#include "contracts/core/OruProperties.h"

#include <QStringList>

#include <algorithm>

namespace hostkit {

bool PropertyFilter::takes(const OruProperties& node, const QString& key) const
{
    QString value;
    node.getValue(key, value, QString());
    return takes(key) || takes(value);
}

bool PropertyFilter::reaches(const OruProperties& node)
{
    Answer& answer = answers_[&node]; // stays in place while the search adds others
    if (answer.revision != node.subtreeRevision()) {
        answer = {node.subtreeRevision(), search(node)};
    }
    return answer.reached;
}

bool PropertyFilter::search(const OruProperties& node)
{
    const QStringList keys = node.string().keys();
    if (takes(node.name()) ||
        std::any_of(keys.begin(), keys.end(), [&](const QString& key) { return takes(node, key); })) {
        return true;
    }
    for (unsigned int i = 0; i < node.size(); ++i) {
        if (reaches(*node.at(i))) {
            return true;
        }
    }
    return false;
}

} // namespace hostkit
