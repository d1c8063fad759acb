#include "contracts/core/internal/OruPropertiesChildren.h"

#include "contracts/core/OruProperties.h"

#include <algorithm>
#include <cstdint>

OruProperties* OruPropertiesChildren::at(std::size_t position) const
{
    if (gaps_ > 0) {
        closeGaps();
    }
    return entries_[first_ + position].node;
}

OruProperties* OruPropertiesChildren::find(const QString& name, std::size_t guess) const
{
    if (guess < size() && at(guess)->name() == name) {
        return at(guess);
    }
    return find(name);
}

std::size_t OruPropertiesChildren::index(const OruProperties& child) const
{
    if (gaps_ > 0) {
        closeGaps();
    }
    return child.place_ - first_;
}

bool OruPropertiesChildren::isMember(const OruProperties& child) const
{
    return entries_[child.place_].member;
}

void OruPropertiesChildren::append(OruProperties* node, bool member)
{
    node->place_ = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back(Child{node, member});
    byName_.insert(node->name(), node);
}

void OruPropertiesChildren::remove(const OruProperties& child)
{
    byName_.remove(child.name());
    entries_[child.place_].node = nullptr;
    ++gaps_;
    trim();
}

OruPropertiesChildren::Child OruPropertiesChildren::takeLast()
{
    byName_.clear();
    const Child last = entries_.back();
    remove(*last.node);
    return last;
}

void OruPropertiesChildren::rename(const QString& oldName, OruProperties& child)
{
    byName_.remove(oldName);
    byName_.insert(child.name(), &child);
}

/// Gaps at either end cost nothing; the others, and those at the front, are closed before they outnumber the
/// children.
void OruPropertiesChildren::trim()
{
    while (entries_.size() > first_ && !entries_.back().node) {
        entries_.pop_back();
        --gaps_;
    }
    while (first_ < entries_.size() && !entries_[first_].node) {
        ++first_;
        --gaps_;
    }
    if (first_ + gaps_ > size()) {
        closeGaps();
    }
}

void OruPropertiesChildren::closeGaps() const
{
    entries_.erase(
        std::remove_if(entries_.begin(), entries_.end(), [](const Child& entry) { return !entry.node; }),
        entries_.end());
    first_ = 0;
    gaps_ = 0;
    for (std::size_t place = 0; place < entries_.size(); ++place) {
        entries_[place].node->place_ = static_cast<std::uint32_t>(place);
    }
}
