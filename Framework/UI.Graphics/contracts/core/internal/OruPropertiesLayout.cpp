#include "contracts/core/internal/OruPropertiesLayout.h"

#include <QHashFunctions>

#include <algorithm>

namespace {

/// So many slots of one key, and so many steps in all, are kept at a layout. Nodes that go beyond made up
/// their keys and defaults one by one.
constexpr std::ptrdiff_t mostVariants = 32;
constexpr std::size_t mostSteps = 256;

/// As ==, in line for texts that share their characters or differ in length, as most here do: a tree of
/// 100,000 nodes is made of millions of these questions.
bool equal(const QString& a, const QString& b)
{
    return a.size() == b.size() && (a.constData() == b.constData() || a == b);
}

std::uint32_t hashOf(const QString& text)
{
    return static_cast<std::uint32_t>(qHash(text));
}

} // namespace

OruPropertiesLayout::OruPropertiesLayout(OruPropertiesLayout& parent, const QString& key, const Slot& slot)
    : parent_(&parent)
    , size_(parent.size_ + 1)
    , key_(key)
    , slot_(slot)
{}

const OruPropertiesLayout* OruPropertiesLayout::find(const QString& key) const
{
    const OruPropertiesLayout* row = this;
    while (row->parent_ && !equal(row->key_, key)) {
        row = row->parent_;
    }
    return row->parent_ ? row : nullptr;
}

std::vector<const OruPropertiesLayout*> OruPropertiesLayout::rows() const
{
    std::vector<const OruPropertiesLayout*> all(size_);
    const OruPropertiesLayout* row = this;
    std::generate(all.rbegin(), all.rend(), [&row] {
        const OruPropertiesLayout* const current = row;
        row = row->parent_;
        return current;
    });
    return all;
}

bool OruPropertiesLayout::isRow(const QString& key, const Slot& slot) const
{
    const auto same = [](const QString& a, const QString& b) {
        return equal(a, b) && a.isNull() == b.isNull();
    };
    return slot_.kind == slot.kind && slot_.defined == slot.defined && equal(key_, key) &&
           same(slot_.text, slot.text) && same(slot_.unit, slot.unit);
}

OruPropertiesLayout* OruPropertiesLayout::step(const QString& key, const Slot& slot) const
{
    const std::uint32_t hash = hashOf(slot.text);
    const auto found = std::find_if(steps_.begin(), steps_.end(), [&](const Step& step) {
        return step.textHash == hash && step.layout->isRow(key, slot);
    });
    return found != steps_.end() ? found->layout.get() : nullptr;
}

/// Whether it keeps one more step. What no group keeps would be found by its one node only.
bool OruPropertiesLayout::keepsStep(const QString& key) const
{
    const auto sameKey = [&key](const Step& step) { return equal(step.layout->key_, key); };
    return !owner_ && steps_.size() < mostSteps &&
           std::count_if(steps_.begin(), steps_.end(), sameKey) < mostVariants;
}

OruPropertiesLayout::Pointer OruPropertiesLayout::with(const QString& key, const Slot& slot)
{
    if (OruPropertiesLayout* const known = step(key, slot)) {
        return known;
    }
    Pointer made(new OruPropertiesLayout(*this, key, slot));
    if (keepsStep(key)) {
        steps_.push_back({hashOf(slot.text), made});
    } else {
        made->owner_ = this;
    }
    return made;
}

OruPropertiesLayout::Pointer OruPropertiesLayout::withSlot(std::size_t index, const Slot& slot)
{
    if (index == size_ - 1) {
        OruPropertiesLayout* const known = parent_->step(key_, slot);
        return known || !parent_->keepsStep(key_) ? known : parent_->with(key_, slot);
    }
    const Pointer before = parent_->withSlot(index, slot);
    return before ? before->with(key_, slot_) : nullptr;
}
