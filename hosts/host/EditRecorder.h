#pragma once

#include "contracts/vis/IOruVisPropertyEdit.h"
#include "hosts/host/EditStep.h"
#include "hosts/host/kelvar_host_api.h"

#include <functional>

namespace hostkit {

/// The road to the tree with a memory: makes the changes that come in and hands out each edit session as
/// steps that can be taken back.
///
/// A session spans a press, all that follows and its release, or one change of a panel; sessions nest by
/// counting. Views are kept apart: a session that turned the view and moved a part gives two steps, so that
/// undoing the move does not turn the view. A session that changed nothing in the end gives none.
///
/// Owned by a boost::shared_ptr, as OruSceneRender::setCustomEditor takes it.
class KELVAR_HOST_API EditRecorder final : public IOruVisPropertyEdit
{
public:
    enum class Subject
    {
        Values,
        View
    };

    /// Told a step once its session has ended; its changes have been made.
    using Listener = std::function<void(Subject subject, const EditStep& step)>;

    ~EditRecorder() = default;

    void setListener(const Listener& listener) { listener_ = listener; }

    void beginEdit() override;
    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override;
    void endEdit() override;

private:
    void tell(Subject subject, EditStep step) const;

    Listener listener_;
    int depth_ = 0;
    EditStep values_;
    EditStep view_;
};

} // namespace hostkit
