#pragma once

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruProperties.h"
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

/// The text that is stored under a key.
inline QString textOf(const OruProperties& node, const char* key)
{
    QString text;
    node.string().getValue(key, text, "(undefined)");
    return text;
}
