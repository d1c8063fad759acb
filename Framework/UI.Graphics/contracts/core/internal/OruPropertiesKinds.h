#pragma once

#include "contracts/core/OruPropertyKind.h"

#include <QString>

#include <unordered_map>

/// Tells whether texts are of their kinds, for many nodes in turn. Not part of the public interface.
///
/// Most nodes hold what others do, so the last text that each kind has accepted is remembered; to compare
/// texts costs less than to read them.
class OruPropertiesKinds
{
public:
    bool accepts(const OruPropertyKind& kind, const QString& text)
    {
        QString& accepted = accepted_[&kind];
        if (!accepted.isNull() && accepted == text) {
            return true;
        }
        const bool good = kind.accepts(text);
        if (good) {
            accepted = text;
        }
        return good;
    }

private:
    /// Null: none yet.
    std::unordered_map<const OruPropertyKind*, QString> accepted_;
};
