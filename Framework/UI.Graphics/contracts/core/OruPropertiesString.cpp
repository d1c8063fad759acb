#include "contracts/core/OruPropertiesString.h"

#include "contracts/core/OruModified.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "contracts/core/internal/OruPropertiesLayout.h"

#include <algorithm>
#include <utility>

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
    , layout_(owner.group.layout_)
{}

OruPropertiesString::~OruPropertiesString() = default;

const OruPropertiesString::Slot& OruPropertiesString::slotIn(const OruPropertiesLayout& row) const
{
    const Slot* const own = ownSlot(row.index());
    return own ? *own : row.slot();
}

const OruPropertiesString::Slot* OruPropertiesString::find(const QString& key) const
{
    if (const OruPropertiesLayout* const row = layout_->find(key)) {
        return &slotIn(*row);
    }
    if (!loose_) {
        return nullptr;
    }
    const auto found = loose_->find(key);
    return found != loose_->end() ? found->second.get() : nullptr;
}

/// Where the node's own slot of a row is or would be.
OruPropertiesString::OwnSlot& OruPropertiesString::placeOf(std::size_t row)
{
    if (!rows_) {
        rows_ = std::make_unique<std::vector<OwnSlot>>();
    }
    if (rows_->size() <= row) {
        rows_->resize(row + 1);
    }
    return (*rows_)[row];
}

OruPropertiesString::Slot& OruPropertiesString::own(const OruPropertiesLayout& row)
{
    OwnSlot& own = placeOf(row.index());
    if (!own) {
        own = std::make_unique<Slot>(row.slot());
    }
    return *own;
}

OruPropertiesString::Slot& OruPropertiesString::loose(const QString& key)
{
    if (!loose_) {
        loose_ = std::make_unique<std::map<QString, OwnSlot>>();
    }
    OwnSlot& own = (*loose_)[key];
    if (!own) {
        own = std::make_unique<Slot>();
    }
    return *own;
}

/// The slot of `key` that this node alone has, made when missing.
OruPropertiesString::Slot& OruPropertiesString::own(const QString& key)
{
    const OruPropertiesLayout* const row = layout_->find(key);
    return row ? own(*row) : loose(key);
}

/// Goes over to the nodes that have `slot` in `row`. False: there will be none but this one.
bool OruPropertiesString::share(const OruPropertiesLayout& row, const Slot& slot)
{
    auto changed = layout_->withSlot(row.index(), slot);
    if (!changed) {
        return false;
    }
    layout_ = std::move(changed);
    return true;
}

/// Changes what no revision tells of. A slot that is shared stays so, with the nodes that had the same
/// change.
template <typename Change>
void OruPropertiesString::change(const QString& key, Change change)
{
    const OruPropertiesLayout* const row = layout_->find(key);
    if (row && !ownSlot(row->index())) {
        Slot slot = row->slot();
        change(slot);
        if (share(*row, slot)) {
            return;
        }
    }
    change(own(key));
}

std::size_t OruPropertiesString::bind(const QString& key, const OruPropertyKind* kind)
{
    if (layout_->find(key)) {
        noteKind(key, kind);
    } else {
        append(key, kind);
    }
    return layout_->find(key)->index();
}

/// One more row. A slot that was there for the key keeps its address.
void OruPropertiesString::append(const QString& key, const OruPropertyKind* kind)
{
    OwnSlot own;
    if (loose_ && loose_->count(key) > 0) {
        own = std::move((*loose_)[key]);
        loose_->erase(key);
    }
    Slot shared;
    shared.kind = kind;
    shared.revision = sharedRevision;
    const std::size_t row = layout_->size();
    layout_ = layout_->with(key, shared);
    if (own) {
        placeOf(row) = std::move(own);
        noteKind(key, kind);
    }
}

void OruPropertiesString::begin(const QString& key, const QString& text)
{
    const OruPropertiesLayout* const row = layout_->find(key);
    if (row && !ownSlot(row->index()) && !row->slot().defined) {
        Slot slot = row->slot();
        slot.text = text;
        slot.defined = true;
        slot.writes = 1;
        if (share(*row, slot)) {
            owner_.touch();
            return;
        }
    }
    setValue(key, text);
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
    for (const OruPropertiesLayout* row : layout_->rows()) {
        if (slotIn(*row).defined) {
            result.append(row->key());
        }
    }
    if (loose_) {
        for (const auto& [key, slot] : *loose_) {
            if (slot->defined) {
                result.append(key);
            }
        }
    }
    std::sort(result.begin(), result.end());
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
    const OruPropertiesLayout* const row = layout_->find(key);
    if (row && !ownSlot(row->index()) && row->slot().defined && row->slot().text == value) {
        return value; // and nobody has a slot to see that it was written
    }
    Slot& slot = row ? own(*row) : loose(key);
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
    if (!defined(key)) {
        return false;
    }
    Slot& slot = own(key);
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
    if (getUnit(key, QString()) == unit) {
        return;
    }
    change(key, [&](Slot& slot) { slot.unit = unit; });
    owner_.touch();
}

void OruPropertiesString::setCachable(const QString& key, bool cachable)
{
    const Slot* const present = find(key);
    if (cachable != (!present || present->cachable)) {
        Slot& slot = own(key);
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

void OruPropertiesString::setKind(const QString& key, const OruPropertyKind& kind)
{
    change(key, [&](Slot& slot) { slot.kind = &kind; });
}

void OruPropertiesString::noteKind(const QString& key, const OruPropertyKind* kind)
{
    const Slot* const present = find(key);
    if (kind && !(present && present->kind)) {
        setKind(key, *kind);
    }
}

const OruPropertiesString::Slot& OruPropertiesString::slot(const QString& key, const OruPropertyKind* kind)
{
    noteKind(key, kind);
    return own(key);
}

void OruPropertiesString::assign(const OruPropertiesString& other)
{
    for (const QString& key : keys()) {
        if (!other.defined(key)) {
            remove(key);
        }
    }
    const auto take = [this](const QString& key, const Slot& slot) {
        if (slot.defined) {
            begin(key, slot.text);
            setUnit(key, slot.unit);
        }
    };
    for (const OruPropertiesLayout* row : other.layout_->rows()) {
        const Slot& slot = other.slotIn(*row);
        bind(row->key(), slot.kind);
        take(row->key(), slot);
    }
    if (other.loose_) {
        for (const auto& [key, slot] : *other.loose_) {
            noteKind(key, slot->kind);
            take(key, *slot);
        }
    }
}
