#include "hosts/widgets/internal/RenameCommand.h"

#include "contracts/core/OruProperties.h"
#include "hosts/host/HostScene.h"

namespace hostkit {

RenameCommand::RenameCommand(SceneWindow& window, const QString& list, const QString& before,
                             const QString& after)
    : QUndoCommand(QStringLiteral("Rename %1").arg(before))
    , window_(&window)
    , list_(list)
    , before_(before)
    , after_(after)
{}

void RenameCommand::rename(const QString& from, const QString& to)
{
    if (!window_) {
        return;
    }
    window_->runAndTell([&](HostScene& host) {
        OruProperties* const list = host.scene().find(list_);
        OruProperties* const node = list ? list->childByName(from) : nullptr;
        const bool renamed = node && node->rename(to);
        if (renamed) {
            host.changed();
        }
        return renamed;
    });
}

} // namespace hostkit
