#include "hosts/host/LinkedEditor.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace hostkit {

/// What the scenes hold.
class LinkedEditor::Editor final : public IOruVisPropertyEdit
{
public:
    explicit Editor(LinkedEditor& linked)
        : linked_(linked)
    {}
    ~Editor() = default;

    void beginEdit() override { linked_.begin(); }
    void endEdit() override { linked_.end(); }
    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override
    {
        if (owner && properties) {
            linked_.edit(*properties, name, value);
        }
    }

private:
    LinkedEditor& linked_;
};

LinkedEditor::LinkedEditor(QObject* parent)
    : QObject(parent)
    , editor_(boost::make_shared<Editor>(*this))
{}

LinkedEditor::~LinkedEditor()
{
    for (const Link& link : links_) {
        if (link.window && sceneOf(link).render.editor() == editor_) {
            sceneOf(link).render.setCustomEditor(link.editor);
        }
    }
}

void LinkedEditor::add(SceneWindow& window)
{
    connect(&window, &SceneWindow::sceneRenewed, this, [this, &window] { install(&window); });
    links_.push_back({&window, nullptr});
    install(&window);
}

void LinkedEditor::install(const SceneWindow* window)
{
    for (Link& link : links_) {
        if (link.window == window) {
            link.editor = sceneOf(link).render.editor();
            sceneOf(link).render.setCustomEditor(editor_);
        }
    }
}

LinkedEditor::Link* LinkedEditor::linkOf(const OruProperties& node)
{
    const OruProperties* root = &node;
    while (root->parent()) {
        root = root->parent();
    }
    const auto found = std::find_if(links_.begin(), links_.end(),
                                    [&](const Link& link) { return link.window && &sceneOf(link) == root; });
    return found == links_.end() ? nullptr : &*found;
}

/// The scenes hand in their sessions one within the other, as when one window draws while a button is held in
/// another. Their editors hear of the outermost.
void LinkedEditor::begin()
{
    if (depth_++ == 0) {
        for (const Link& link : links_) {
            link.editor->beginEdit();
        }
    }
}

void LinkedEditor::end()
{
    if (depth_ == 0 || --depth_ > 0) {
        return;
    }
    for (const Link& link : links_) {
        link.editor->endEdit();
    }
}

void LinkedEditor::edit(OruProperties& node, const QString& key, const QString& value)
{
    const Link* const origin = linkOf(node);
    if (!origin) {
        return;
    }
    if (node.type() == OruVisViewpoint::typeString) {
        origin->editor->editValue(&sceneOf(*origin).render.visualizations, &node, key, value);
        return;
    }
    const QString path = node.path();
    for (const Link& link : links_) {
        OruProperties* const keeper = link.window ? sceneOf(link).find(path) : nullptr;
        if (keeper) {
            link.editor->editValue(&sceneOf(link).render.visualizations, keeper, key, value);
            handOn(*origin, *keeper, path, key);
            return;
        }
    }
}

/// Everywhere what the one scene has. The window that the edit comes from repaints by itself.
void LinkedEditor::handOn(const Link& origin, const OruProperties& changed, const QString& path,
                          const QString& key)
{
    QString value;
    changed.getValue(key, value, QString());
    for (const Link& link : links_) {
        OruProperties* const node = link.window ? sceneOf(link).find(path) : nullptr;
        if (node && node != &changed && node->string().defined(key)) {
            node->setValue(key, value);
        }
        if (node && link.window != origin.window) {
            link.window->host().changed();
            link.window->requestUpdate();
        }
    }
}

} // namespace hostkit
