#pragma once

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruViewPtr.h"
#include "contracts/core/kelvar_core_api.h"

#include <QString>

#include <cstdint>

/// What a typed property member needs to know: its node, its key, and whether its copy of the value is stale.
///
/// It owns nothing. A copy is bound to the same node as its source; an adaptor that outlives its node reports
/// no more changes.
class KELVAR_CORE_API OruPropertyAdaptorBase
{
public:
    OruPropertyAdaptorBase(const OruPropertyAdaptorBase& other) = default;
    OruPropertyAdaptorBase& operator=(const OruPropertyAdaptorBase& other) = delete;

    const QString& name() const { return key_; }

    /// The unit that the store keeps for the key; empty, and a write dropped, once the node is gone.
    void setUnit(const QString& unit);
    QString getUnit() const;

    /// Tells what the key holds more closely than its type does; see OruPropertiesString::setKind.
    void setKind(const OruPropertyKind& kind);
    void setKind(OruPropertyKind&& kind) = delete;

protected:
    /// `kind` is noted for the key where none was told yet; null: it is not known.
    OruPropertyAdaptorBase(OruProperties& owner, const QString& key, const OruPropertyKind* kind = nullptr);
    ~OruPropertyAdaptorBase() = default;

    const oru::view_ptr<OruProperties>& node() const { return node_; }

    /// True when the value changed since the last reset(). A new adaptor counts as changed.
    bool modified() const { return node_ && node_->string().revision(row_) != seen_; }

    /// False when the value must be read from the store each time.
    bool cachable() const { return !node_ || node_->string().cachable(row_); }

    /// Takes the value as seen.
    void reset() const;

    /// Gives the key, which nobody has defined yet, its first value. Nodes that begin with the same share it.
    void begin(const QString& text);

private:
    oru::view_ptr<OruProperties> node_;
    QString key_;
    /// Both as wide as they need be: a scene has a million adaptors.
    mutable std::uint64_t seen_ : 46;
    std::uint64_t row_ : 18;
};
