#pragma once

#include "contracts/core/OruViewPtr.h"
#include "contracts/vis/IOruVisPropertyEdit.h"

#include <QString>

#include <vector>

/// The road to the tree with a memory: what one edit session changed can be taken back as one step.
///
/// A session spans a press, all that follows and its release. Turning the view is no edit: changes of
/// viewpoints are made and not remembered.
class UndoEditor final : public IOruVisPropertyEdit
{
public:
    ~UndoEditor() = default;

    void beginEdit() override;
    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override;
    void endEdit() override;

    /// Takes the last step back. False: there is none. A node that is gone by then is left out.
    bool undo();

private:
    struct Change
    {
        oru::view_ptr<OruProperties> node;
        QString key;
        QString before;
    };
    using Step = std::vector<Change>;

    Step session_;
    std::vector<Step> steps_;
};
