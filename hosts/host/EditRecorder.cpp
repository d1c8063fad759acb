#include "hosts/host/EditRecorder.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <utility>

namespace hostkit {

void EditRecorder::beginEdit()
{
    ++depth_;
}

void EditRecorder::editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                             const QString& value)
{
    if (!owner || !properties) {
        return;
    }
    QString unused;
    const QString before = properties->getValue(name, unused, QString());
    if (before == value) {
        return;
    }
    const bool view = properties->type() == OruVisViewpoint::typeString;
    (view ? view_ : values_).add({properties->path(), name, before, properties->setValue(name, value)});
    if (depth_ == 0) {
        endEdit();
    }
}

/// An end without a beginning ends what came in outside of any session.
void EditRecorder::endEdit()
{
    if (depth_ > 0 && --depth_ > 0) {
        return;
    }
    tell(Subject::Values, std::exchange(values_, {}));
    tell(Subject::View, std::exchange(view_, {}));
}

void EditRecorder::tell(Subject subject, EditStep step) const
{
    step.settle();
    if (!step.empty() && listener_) {
        listener_(subject, step);
    }
}

} // namespace hostkit
