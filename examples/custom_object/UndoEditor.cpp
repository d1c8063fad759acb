#include "UndoEditor.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/OruVisViewpoint.h"

void UndoEditor::beginEdit()
{
    session_.clear();
}

void UndoEditor::editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                           const QString& value)
{
    if (!owner || !properties) {
        return;
    }
    QString before;
    properties->getValue(name, before, QString());
    if (before == value) {
        return;
    }
    if (properties->type() != OruVisViewpoint::typeString) {
        session_.push_back({oru::view_ptr<OruProperties>(*properties), name, before});
    }
    properties->setValue(name, value);
}

void UndoEditor::endEdit()
{
    if (!session_.empty()) {
        steps_.push_back(std::move(session_));
        session_.clear();
    }
}

bool UndoEditor::undo()
{
    if (steps_.empty()) {
        return false;
    }
    const Step step = std::move(steps_.back());
    steps_.pop_back();
    for (auto change = step.rbegin(); change != step.rend(); ++change) {
        if (OruProperties* const node = change->node.get()) {
            node->setValue(change->key, change->before);
        }
    }
    return true;
}
