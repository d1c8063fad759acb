#pragma once

#include "contracts/vis/kelvar_vis_api.h"

#include <boost/shared_ptr.hpp>

class OruProperties;

/// What stands behind a hit name: the object, and a qualifier that says which part of it.
///
/// A value. Copies share the qualifier, which lives until the last of them is gone.
class KELVAR_VIS_API OruVisHitProperty
{
public:
    /// Base of what can be said about a part of an object; asked for by dynamic_cast.
    struct KELVAR_VIS_API IQualifier
    {
        IQualifier() = default;
        IQualifier(const IQualifier&) = default;
        IQualifier& operator=(const IQualifier&) = default;
        virtual ~IQualifier();
    };

    /// Nothing: no object and no qualifier.
    OruVisHitProperty() = default;

    /// `hitObject` is borrowed, `hitQualifier` shared; both may be null.
    OruVisHitProperty(OruProperties* hitObject, const boost::shared_ptr<IQualifier>& hitQualifier)
        : object(hitObject)
        , qualifier(hitQualifier.get())
        , owner_(hitQualifier)
    {}

    /// The object that was hit. Not owned; null for nothing.
    OruProperties* object = nullptr;

    /// The part of it. Owned by this property and its copies; null for the whole object.
    IQualifier* qualifier = nullptr;

private:
    boost::shared_ptr<IQualifier> owner_;
};
