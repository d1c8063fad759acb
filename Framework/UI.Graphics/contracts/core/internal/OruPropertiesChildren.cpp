#include "contracts/core/internal/OruPropertiesChildren.h"

#include "contracts/core/OruProperties.h"

#include <algorithm>
#include <cstdint>

OruProperties* OruPropertiesChildren::at(std::size_t position) const
{
    if (gaps_ > 0) {
        closeGaps();
    }
    return entries_[first_ + position];
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

void OruPropertiesChildren::append(OruProperties* node)
{
    node->place_ = static_cast<std::uint32_t>(entries_.size());
    entries_.push_back(node);
    byName_.insert(*node);
}

void OruPropertiesChildren::remove(const OruProperties& child)
{
    byName_.remove(child.name(), child);
    entries_[child.place_] = nullptr;
    ++gaps_;
    trim();
}

OruProperties* OruPropertiesChildren::takeLast()
{
    byName_.clear();
    OruProperties* const last = entries_.back();
    remove(*last);
    return last;
}

void OruPropertiesChildren::rename(const QString& oldName, OruProperties& child)
{
    byName_.remove(oldName, child);
    byName_.insert(child);
}

/// Gaps at either end cost nothing; the others, and those at the front, are closed before they outnumber the
/// children.
void OruPropertiesChildren::trim()
{
    while (entries_.size() > first_ && !entries_.back()) {
        entries_.pop_back();
        --gaps_;
    }
    while (first_ < entries_.size() && !entries_[first_]) {
        ++first_;
        --gaps_;
    }
    if (first_ + gaps_ > size()) {
        closeGaps();
    }
}

void OruPropertiesChildren::closeGaps() const
{
    entries_.erase(std::remove(entries_.begin(), entries_.end(), nullptr), entries_.end());
    first_ = 0;
    gaps_ = 0;
    for (std::size_t place = 0; place < entries_.size(); ++place) {
        entries_[place]->place_ = static_cast<std::uint32_t>(place);
    }
}
