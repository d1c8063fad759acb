#include "contracts/core/OruProperties.h"

#include "contracts/core/OruDebugLogger.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/internal/OruPropertiesChildren.h"
#include "contracts/core/internal/OruPropertiesForeign.h"
#include "contracts/debug/dbgostream.h"
#include "contracts/debug/logger.h"

#include <QStringList>

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
    while (size() > 0) {
        OruProperties* const last = children_->takeLast();
        last->setParentRecord(nullptr);
        if (!last->member_) {
            delete last;
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
    if (!children_) {
        children_ = std::make_unique<OruPropertiesChildren>();
    }
    children_->append(child);
    child->member_ = member;
    child->setParentRecord(this);
    touch();
    return true;
}

bool OruProperties::remove(OruProperties* child)
{
    if (!child || child->parent() != this) {
        return false;
    }
    children_->remove(*child);
    child->setParentRecord(nullptr);
    touch();
    return true;
}

bool OruProperties::erase(OruProperties* child)
{
    if (!child || child->parent() != this) {
        return false;
    }
    const bool member = child->member_;
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
        above->children_->rename(oldName, *this);
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

unsigned int OruProperties::size() const
{
    return children_ ? static_cast<unsigned int>(children_->size()) : 0;
}

OruProperties* OruProperties::at(unsigned int position) const
{
    return children_->at(position);
}

int OruProperties::index(const OruProperties* child) const
{
    return child && child->parent() == this ? static_cast<int>(children_->index(*child)) : -1;
}

OruProperties* OruProperties::childByName(const QString& childName) const
{
    return children_ ? children_->find(childName) : nullptr;
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
