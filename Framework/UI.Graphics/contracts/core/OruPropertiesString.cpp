#include "contracts/core/OruPropertiesString.h"

#include "contracts/core/OruModified.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"

namespace {

/// Text reads as itself; all other types by their text form.
bool parse(const QString& text, QString& value)
{
    value = text;
    return true;
}

template <typename T>
bool parse(const QString& text, T& value)
{
    return oru::fromString(text, value);
}

/// Scenes have 100,000 nodes and more, each with a few slots.
static_assert(sizeof(OruPropertiesString::Slot) <=
              2 * sizeof(QString) + sizeof(void*) + sizeof(std::uint64_t));

} // namespace

OruPropertiesString::OruPropertiesString(OruModified& owner)
    : owner_(owner)
{}

const OruPropertiesString::Slot* OruPropertiesString::find(const QString& key) const
{
    const auto found = slots_.find(key);
    return found != slots_.end() ? &found->second : nullptr;
}

void OruPropertiesString::noteChange(Slot& slot)
{
    ++slot.revision;
    owner_.touch();
}

bool OruPropertiesString::defined(const QString& key) const
{
    const Slot* slot = find(key);
    return slot && slot->defined;
}

QStringList OruPropertiesString::keys() const
{
    QStringList result;
    for (const auto& [key, slot] : slots_) {
        if (slot.defined) {
            result.append(key);
        }
    }
    return result;
}

template <typename T>
QString OruPropertiesString::read(const QString& key, T& value, const T& fallback) const
{
    const Slot* slot = find(key);
    if (!slot || !slot->defined) {
        value = fallback;
        return QString();
    }
    if (!parse(slot->text, value)) {
        value = fallback;
    }
    return slot->text;
}

QString OruPropertiesString::getValue(const QString& key, bool& value, bool fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, int& value, int fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, float& value, float fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, double& value, double fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, QString& value, const QString& fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, QColor& value, const QColor& fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::getValue(const QString& key, Kelvar::Math::Matrix& value,
                                      const Kelvar::Math::Matrix& fallback) const
{
    return read(key, value, fallback);
}

QString OruPropertiesString::setValue(const QString& key, bool value)
{
    return setValue(key, oru::toString(value));
}

QString OruPropertiesString::setValue(const QString& key, int value)
{
    return setValue(key, oru::toString(value));
}

QString OruPropertiesString::setValue(const QString& key, float value)
{
    return setValue(key, oru::toString(value));
}

QString OruPropertiesString::setValue(const QString& key, double value)
{
    return setValue(key, oru::toString(value));
}

QString OruPropertiesString::setValue(const QString& key, const QColor& value)
{
    return setValue(key, oru::toString(value));
}

QString OruPropertiesString::setValue(const QString& key, const char* value)
{
    return setValue(key, QString::fromUtf8(value));
}

QString OruPropertiesString::setValue(const QString& key, const QString& value)
{
    Slot& slot = slots_[key];
    ++slot.writes;
    if (!slot.defined || slot.text != value) {
        slot.text = value;
        slot.defined = true;
        noteChange(slot);
    }
    return value;
}

bool OruPropertiesString::remove(const QString& key)
{
    const auto found = slots_.find(key);
    if (found == slots_.end() || !found->second.defined) {
        return false;
    }
    Slot& slot = found->second;
    slot.defined = false;
    slot.text.clear();
    slot.unit.clear();
    noteChange(slot);
    return true;
}

QString OruPropertiesString::getUnit(const QString& key, const QString& fallback) const
{
    const Slot* slot = find(key);
    return slot && !slot->unit.isEmpty() ? slot->unit : fallback;
}

void OruPropertiesString::setUnit(const QString& key, const QString& unit)
{
    Slot& slot = slots_[key];
    if (slot.unit != unit) {
        slot.unit = unit;
        owner_.touch();
    }
}

void OruPropertiesString::setCachable(const QString& key, bool cachable)
{
    Slot& slot = slots_[key];
    if (slot.cachable != cachable) {
        slot.cachable = cachable;
        noteChange(slot);
    }
}

const OruPropertyKind& OruPropertiesString::kind(const QString& key) const
{
    static constexpr OruPropertyKind anyText = OruPropertyKind::of<QString>();
    const Slot* slot = find(key);
    return slot && slot->kind ? *slot->kind : anyText;
}

const OruPropertiesString::Slot& OruPropertiesString::slot(const QString& key, const OruPropertyKind* kind)
{
    Slot& slot = slots_[key];
    if (!slot.kind) {
        slot.kind = kind;
    }
    return slot;
}

void OruPropertiesString::assign(const OruPropertiesString& other)
{
    for (const QString& key : keys()) {
        if (!other.defined(key)) {
            remove(key);
        }
    }
    for (const auto& [key, slot] : other.slots_) {
        if (slot.defined) {
            setValue(key, slot.text);
            setUnit(key, slot.unit);
        }
        this->slot(key, slot.kind);
    }
}
