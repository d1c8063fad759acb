#include "hosts/host/LinkedEditor.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/IOruVisPropertyEdit.h"
#include "contracts/vis/OruVisList.h"
#include "contracts/vis/OruVisViewpoint.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace hostkit {

/// What a scene holds.
class LinkedEditor::Editor final : public IOruVisPropertyEdit
{
public:
    explicit Editor(LinkedEditor& linked)
        : linked_(linked)
    {}
    ~Editor() = default;

    void beginEdit() override
    {
        linked_.begin();
        ++open_;
    }

    void endEdit() override
    {
        if (open_ > 0) {
            --open_;
            linked_.end();
        }
    }

    /// Ends what a scene left open that went in the middle of a gesture.
    void endAll()
    {
        while (open_ > 0) {
            endEdit();
        }
    }

    void editValue(OruVisList* owner, OruProperties* properties, const QString& name,
                   const QString& value) override
    {
        if (owner && properties) {
            linked_.edit(*properties, name, value);
        }
    }

private:
    LinkedEditor& linked_;
    int open_ = 0;
};

LinkedEditor::LinkedEditor(QObject* parent)
    : QObject(parent)
{}

LinkedEditor::~LinkedEditor()
{
    for (const Link& link : links_) {
        OruScene* const scene = sceneOf(link);
        if (scene && scene->render.editor() == link.own) {
            scene->render.setCustomEditor(link.editor);
        }
    }
}

void LinkedEditor::add(SceneWindow& window)
{
    const auto own = boost::make_shared<Editor>(*this);
    connect(&window, &SceneWindow::sceneRenewed, this, [this, &window] { install(&window); });
    connect(&window, &QObject::destroyed, this, [own] { own->endAll(); });
    links_.push_back({&window, own, nullptr});
    install(&window);
}

/// Null: there is none, since the window has ended or lost it.
OruScene* LinkedEditor::sceneOf(const Link& link)
{
    return link.window && link.window->hasScene() ? &link.window->host().scene() : nullptr;
}

void LinkedEditor::install(const SceneWindow* window)
{
    for (Link& link : links_) {
        if (link.window != window) {
            continue;
        }
        link.own->endAll();
        if (OruScene* const scene = sceneOf(link)) {
            link.editor = scene->render.editor();
            scene->render.setCustomEditor(link.own);
        }
    }
}

LinkedEditor::Link* LinkedEditor::linkOf(const OruProperties& node)
{
    const OruProperties* root = &node;
    while (root->parent()) {
        root = root->parent();
    }
    const auto found =
        std::find_if(links_.begin(), links_.end(), [&](const Link& link) { return sceneOf(link) == root; });
    return found == links_.end() ? nullptr : &*found;
}

/// The scenes hand in their sessions one within the other, as when one window draws while a button is held in
/// another. Their editors hear of the outermost.
void LinkedEditor::begin()
{
    if (depth_++ == 0) {
        tellAll(&IOruVisPropertyEdit::beginEdit);
    }
}

void LinkedEditor::end()
{
    if (--depth_ == 0) {
        tellAll(&IOruVisPropertyEdit::endEdit);
    }
}

void LinkedEditor::tellAll(void (IOruVisPropertyEdit::*operation)())
{
    for (const Link& link : links_) {
        if (link.editor) {
            (link.editor.get()->*operation)();
        }
    }
}

void LinkedEditor::edit(OruProperties& node, const QString& key, const QString& value)
{
    const Link* const origin = linkOf(node);
    if (!origin) {
        return;
    }
    if (node.type() == OruVisViewpoint::typeString) {
        origin->editor->editValue(&sceneOf(*origin)->render.visualizations, &node, key, value);
        return;
    }
    const QString path = node.path();
    for (const Link& link : links_) {
        OruScene* const scene = sceneOf(link);
        OruProperties* const keeper = scene ? scene->find(path) : nullptr;
        if (keeper) {
            link.editor->editValue(&scene->render.visualizations, keeper, key, value);
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
        OruScene* const scene = sceneOf(link);
        OruProperties* const node = scene ? scene->find(path) : nullptr;
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
