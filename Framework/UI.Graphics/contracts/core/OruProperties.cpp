#include "contracts/core/OruProperties.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/internal/OruPropertiesForeign.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/debug/logger.h"

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <string>

namespace {

/// Few callers look at what insert() answers, so an object that is missing from the tree is told of.
void tellNameTaken(const OruProperties& present, const OruProperties& refused)
{
    const kelvardebug::dbgostream stream = oru::debug_logger::debuglogger().derr(std::string());
    if (stream.active()) {
        const QString text =
            QStringLiteral("\"%1\" of type \"%2\" is refused: \"%3\" of type \"%4\" bears that name")
                .arg(refused.name(), refused.type(), present.path(), present.type());
        stream.buffer() << text.toStdString();
        stream << std::endl;
    }
}

} // namespace

OruProperties::OruProperties(OruModifiedGroup& sharedGroup)
    : OruModified(sharedGroup)
    , values_(*this)
{}

OruProperties::OruProperties(const OruProperties& other)
    : OruModified(other)
    , flags(other.flags)
    , name_(other.name_)
    , type_(other.type_)
    , values_(*this)
{
    values_.assign(other.values_);
}

OruProperties& OruProperties::operator=(const OruProperties& other)
{
    if (this != &other) {
        OruModified::operator=(other);
        values_.assign(other.values_);
    }
    return *this;
}

OruProperties::~OruProperties()
{
    if (OruProperties* above = parent()) {
        above->remove(this);
    }
    while (!children_.empty()) {
        const Child last = children_.back();
        children_.pop_back();
        last.node->setParentRecord(nullptr);
        if (!last.member) {
            delete last.node;
        }
    }
}

bool OruProperties::accepts(const OruProperties* child) const
{
    if (!child || child->parent()) {
        return false;
    }
    for (const OruProperties* above = this; above; above = above->parent()) {
        if (above == child) {
            return false;
        }
    }
    if (const OruProperties* present = childByName(child->name())) {
        tellNameTaken(*present, *child);
        return false;
    }
    return true;
}

bool OruProperties::insert(OruProperties* child, bool member)
{
    if (!accepts(child)) {
        return false;
    }
    children_.push_back(Child{child, member});
    byName_.insert(child->name(), child);
    child->setParentRecord(this);
    touch();
    return true;
}

bool OruProperties::remove(OruProperties* child)
{
    const int position = index(child);
    if (position < 0) {
        return false;
    }
    children_.erase(children_.begin() + position);
    byName_.remove(child->name());
    child->setParentRecord(nullptr);
    touch();
    return true;
}

bool OruProperties::erase(OruProperties* child)
{
    const int position = index(child);
    if (position < 0) {
        return false;
    }
    const bool member = children_[static_cast<std::size_t>(position)].member;
    if (!remove(child)) {
        return false;
    }
    if (!member) {
        delete child;
    }
    return true;
}

bool OruProperties::rename(const QString& newName)
{
    if (newName == name_) {
        return !newName.isEmpty();
    }
    OruProperties* const above = parent();
    if (newName.isEmpty() || newName.contains(QLatin1Char('/')) || (above && above->childByName(newName))) {
        return false;
    }
    const QString oldName = name_;
    name_ = newName;
    touch();
    if (above) {
        above->byName_.remove(oldName);
        above->byName_.insert(name_, this);
        above->onDependentRename(oldName, name_);
    }
    return true;
}

void OruProperties::onDependentRename(const QString&, const QString&) {}

QString OruProperties::getValue(const QString& key, QString& value, const QString& fallback) const
{
    return values_.getValue(key, value, fallback);
}

QString OruProperties::setValue(const QString& key, const QString& value)
{
    return values_.setValue(key, value);
}

OruProperties* OruProperties::makeChild(const QString&, const QString&)
{
    return nullptr;
}

void OruProperties::setType(const QString& newType)
{
    if (newType != type_) {
        type_ = newType;
        touch();
    }
}

int OruProperties::index(const OruProperties* child) const
{
    if (!child || child->parent() != this) {
        return -1;
    }
    // From the back: members of a parent die in that order.
    const auto found = std::find_if(children_.rbegin(), children_.rend(),
                                    [child](const Child& entry) { return entry.node == child; });
    return static_cast<int>(std::distance(found, children_.rend())) - 1;
}

OruProperties* OruProperties::find(const QString& relativePath)
{
    OruProperties* node = this;
    if (relativePath.isEmpty()) {
        return node;
    }
    for (const QString& step : relativePath.split(QLatin1Char('/'))) {
        node = node->childByName(step);
        if (!node) {
            return nullptr;
        }
    }
    return node;
}

QString OruProperties::path() const
{
    QStringList names;
    for (const OruProperties* node = this; node->parent(); node = node->parent()) {
        names.prepend(node->name());
    }
    return names.join(QLatin1String("/"));
}
