#pragma once

#include "hosts/host/SceneWindow.h"
#include "hosts/host/kelvar_host_api.h"

#include <QObject>
#include <QPointer>

#include <boost/shared_ptr.hpp>

#include <vector>

class IOruVisPropertyEdit;

namespace hostkit {

/// Keeps the scenes of several windows in step that show the same: what is edited in one is edited in all of
/// them, at the node of the same path. Each keeps its own view.
///
///     LinkedEditor linked;
///     linked.add(front.window());
///     linked.add(side.window());
///
/// It stands between each scene and its editor. The editor of the first window that has the node makes the
/// change, so that one place keeps them all, as an UndoEditor does, and the other scenes take over what it
/// made of it; that goes for steps that are taken back, too. A scene without the node is left alone. The
/// windows repaint by themselves.
///
/// It hears of what goes through editors: HostScene::edit, handlers, HostScene::undo. The scenes are alike
/// when they are added; nothing is compared.
class KELVAR_HOST_API LinkedEditor : public QObject
{
    Q_OBJECT

public:
    explicit LinkedEditor(QObject* parent = nullptr);

    /// The scenes go on with the editors that they had.
    ~LinkedEditor() override;

    /// Takes in the scene of a window, and each that the window makes anew; a session that the former one
    /// left open ends. To be called behind what installs an editor of its own there. `window` is borrowed; it
    /// may end first, and with it the session that it has open.
    void add(SceneWindow& window);

private:
    class Editor;

    /// A window, what its scene holds, and the editor that this had before; null as long as there was none.
    struct Link
    {
        QPointer<SceneWindow> window;
        boost::shared_ptr<Editor> own;
        boost::shared_ptr<IOruVisPropertyEdit> editor;
    };

    static OruScene* sceneOf(const Link& link);
    void install(const SceneWindow* window);
    Link* linkOf(const OruProperties& node);
    void begin();
    void end();
    void tellAll(void (IOruVisPropertyEdit::*operation)());
    void edit(OruProperties& node, const QString& key, const QString& value);
    void handOn(const Link& origin, const OruProperties& changed, const QString& path, const QString& key);

    std::vector<Link> links_;
    int depth_ = 0;
};

} // namespace hostkit
