// The road between the stored viewpoints and the working copy in an event context, and that of a host's own
// edits.

#include "Scene/core/OruScene.h"
#include "Scene/core/internal/OruSceneEditGuard.h"
#include "Scene/core/internal/OruSceneTrace.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruText.h"
#include "contracts/math/Matrix.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <QList>

using Kelvar::Math::Matrix;

const Matrix& OruScene::viewpoint(const QString& name) const
{
    ORU_SCENE_TRACE();
    if (const Matrix* const named = findViewpoint(name)) {
        return *named;
    }
    const OruVisList& list = render.visualizations;
    QList<QString> names;
    for (unsigned int index = 0; index < list.size(); ++index) {
        const OruProperties* const node = list.at(index);
        if (dynamic_cast<const OruVisViewpoint*>(node)) {
            names.append(node->name());
        }
    }
    const Matrix* const first = names.isEmpty() ? nullptr : findViewpoint(names.first());
    return first ? *first : Matrix::Identity;
}

const Matrix* OruScene::findViewpoint(const QString& name) const
{
    const OruVisList& list = render.visualizations;
    const auto* const found = dynamic_cast<const OruVisViewpoint*>(list[name]);
    return found ? &found->matrix.value() : nullptr;
}

bool OruScene::setViewpoint(const QString& name, const Matrix& view)
{
    ORU_SCENE_TRACE();
    const Matrix* const stored = findViewpoint(name);
    if (!stored || !(*stored != view)) {
        return false;
    }
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    // Only now, since beginning a session may have changed the list.
    auto* const target = dynamic_cast<OruVisViewpoint*>(render.visualizations[name]);
    if (!target) {
        return false;
    }
    const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
    editor->editValue(&render.visualizations, target, target->matrix.name(), oru::toString(view));
    return true;
}

void OruScene::inEditSession(const std::function<void(IOruVisPropertyEdit& editor)>& changes)
{
    ORU_SCENE_TRACE();
    const OruSceneEditGuard guard(render, OruSceneEditGuard::OpensAndCloses, editDepth);
    const boost::shared_ptr<IOruVisPropertyEdit> editor = render.editor();
    changes(*editor);
}
