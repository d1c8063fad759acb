#pragma once

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertyKind.h"
#include "tests/core/QtPrint.h"

/// A node that has its name from the start.
struct Named : OruProperties
{
    Named(OruModifiedGroup& sharedGroup, const QString& name)
        : OruProperties(sharedGroup)
    {
        OruProperties::rename(name);
    }
};

/// What the "size" of a leaf holds.
inline constexpr OruPropertyKind sizes = OruPropertyKind::of<float>().from(0.0);

/// Makes children of type "leaf" and "branch"; the maker of "refused" gives a child whose insertion fails.
struct Branch : Named
{
    Branch(OruModifiedGroup& sharedGroup, const QString& name)
        : Named(sharedGroup, name)
    {
        setType("branch");
    }
    using OruProperties::insert;
    bool insert(OruProperties* child, bool member) override
    {
        ++inserts;
        return child->type() != "refused" && OruProperties::insert(child, member);
    }
    OruProperties* makeChild(const QString& childName, const QString& childType) override
    {
        if (childType == "branch") {
            return new Branch(group, childName);
        }
        if (childType != "leaf" && childType != "refused") {
            return nullptr;
        }
        auto* child = new OruProperties(group);
        child->setType(childType);
        child->string().setKind("size", sizes);
        return child;
    }
    int inserts = 0;
};

/// The text that is stored under a key.
inline QString textOf(const OruProperties& node, const char* key)
{
    QString text;
    node.string().getValue(key, text, "(undefined)");
    return text;
}
