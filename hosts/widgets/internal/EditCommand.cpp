#include "hosts/widgets/internal/EditCommand.h"

#include "hosts/host/HostScene.h"

#include <utility>

namespace hostkit {

namespace {

/// Notches of a wheel that follow each other within that time belong together.
constexpr qint64 rowMilliseconds = 600;

} // namespace

EditCommand::EditCommand(SceneWindow& window, const EditStep& step, bool inRow)
    : QUndoCommand(step.name())
    , window_(&window)
    , step_(step)
    , inRow_(inRow)
{
    age_.start();
}

void EditCommand::undo()
{
    apply(&HostScene::undo);
}

void EditCommand::redo()
{
    if (!std::exchange(made_, false)) {
        apply(&HostScene::redo);
    }
}

bool EditCommand::mergeWith(const QUndoCommand* other)
{
    const auto& later = static_cast<const EditCommand&>(*other); // its id says so
    if (age_.elapsed() > rowMilliseconds) {
        return false;
    }
    for (const EditStep::Change& change : later.step_.changes()) {
        step_.add(change);
    }
    step_.settle();
    setObsolete(step_.empty());
    age_ = later.age_;
    return true;
}

void EditCommand::apply(Way way)
{
    if (window_) {
        window_->changeAndTell([&](HostScene& host) {
            (host.*way)(step_);
            return true;
        });
    }
}

} // namespace hostkit
