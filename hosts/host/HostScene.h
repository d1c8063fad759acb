#pragma once

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "hosts/host/EditStep.h"
#include "hosts/host/PictureOptions.h"
#include "hosts/host/kelvar_host_api.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

namespace hostkit {

/// A scene and its event context, kept in step: what every host of a scene does, whatever its window system.
///
/// It keeps the context's projection current and draws once without painting before the first event and
/// whenever the tree was changed from outside, so that an event never works on, or writes back, a stale view.
/// All operations need the OpenGL context current, construction and destruction too. Pixels are OpenGL
/// window coordinates.
class KELVAR_HOST_API HostScene
{
public:
    using Event = bool (OruSceneEventHandler::*)(OruSceneEventContext&);

    /// The search places of OruResource: fonts, images, the user's own files. Empty: a font of the system,
    /// the images that are installed with the library, none.
    explicit HostScene(const QString& fonts = QString(), const QString& images = QString(),
                       const QString& user = QString());

    HostScene(const HostScene&) = delete;
    HostScene& operator=(const HostScene&) = delete;

    OruScene& scene() { return scene_; }
    OruSceneEventContext& context() { return context_; }

    /// Size of the framebuffer in pixels.
    void setSize(const QSize& pixels);

    /// Hands an event to the scene; the context holds what the event is about. True: the view wants a
    /// repaint. That is also so when the rubber band or the tooltip changed, whatever the scene answers.
    bool send(Event event);

    /// Magnifies the view by `factor`, above 0, so that what lies under a pixel stays there. False: nothing
    /// changed.
    bool zoomAbout(const QPoint& pixel, double factor);

    /// Turns the view about the axis that looks out of the screen at a pixel, counter-clockwise as seen, in
    /// degrees. False: nothing changed.
    bool turnAbout(const QPoint& pixel, double degrees);

    /// Hands the scene one wheel event of one step, towards or away from the person, with what lies under the
    /// pointer as its fixed point; the center that the view orbits about stays.
    bool wheelAbout(const QPoint& pixel);

    /// The view that is shown.
    const Kelvar::Math::Matrix& view();

    /// Puts a view in place of the present one, as one edit. False: it was that view.
    bool setView(const Kelvar::Math::Matrix& view);

    /// Paints one frame into the current draw buffer.
    void draw();

    /// The view as a picture of that size, whatever the size of the window: RGB, or ARGB if it is to be
    /// transparent. A null image: the picture could not be made, or the options are out of their ranges; why
    /// is on the error stream. The tree's values are then as they were. Draws into the window, too, and so
    /// draw again ahead of a swap.
    QImage picture(const QSize& pixels, const PictureOptions& options = PictureOptions());

    /// The same for another view than the one that is shown.
    QImage picture(const QSize& pixels, const Kelvar::Math::Matrix& view,
                   const PictureOptions& options = PictureOptions());

    /// The tree or the view was changed other than through this class.
    void changed() { stale_ = true; }

    /// Turns the view to a standard position of that name: x, -x, y, -y, z, -z, iso or fit. Iso is from
    /// above, front right, with the Z axis up and the front towards -Y. False: no such position, or nothing
    /// to see from it; the view is as it was.
    bool showFrom(const QString& position);

    /// Does the last showFrom() again if the view has got another size since then and is otherwise as that
    /// left it. Not an edit, so there is nothing to undo. False: nothing changed.
    bool fitAgain();

    /// The names that showFrom knows.
    static QStringList positions();

    /// The property tree as a file. False: not done, `error` says why.
    bool load(const QString& file, QString* error);
    bool save(const QString& file, QString* error) const;

    /// Edits a property by the path of its node and its key, as in "render/textInfo". False: there is no such
    /// property, or it cannot have that value; `error` says what is missing or wanted.
    bool setValue(const QString& path, const QString& value, QString* error);

    /// Changes a property as an interaction does: through the scene's editor, in an edit session, so that it
    /// can be undone; while a button is held, in the session of that gesture. `node` belongs to this scene;
    /// the value is not checked.
    void edit(OruProperties& node, const QString& key, const QString& value);

    /// Takes a step back, or makes it again. The scene's editor hears of each value once the tree has it, and
    /// so one that keeps what changes finds nothing to keep.
    void undo(const EditStep& step);
    void redo(const EditStep& step);

    /// Whether setValue would not refuse the value once the property exists. False: the property exists, and
    /// `error` says what it wants.
    bool accepts(const QString& path, const QString& value, QString* error);

private:
    /// A path split into its node, null when there is none, and the key.
    struct Place
    {
        OruProperties* node;
        QString nodePath;
        QString key;
    };
    Place placeOf(const QString& path);
    void tellEditor(const EditStep& step);

    /// What a showFrom() did.
    struct Fit
    {
        QString position;
        OruOglViewport viewport;
        Kelvar::Math::Matrix view;
    };
    bool viewFrom(const QString& position, Kelvar::Math::Matrix& view);
    void refresh();
    void updateProjection();
    void catchUp();
    QImage capture(OruSceneEventContext shot, const QSize& pixels, const PictureOptions& options);
    Kelvar::Math::Vector3 pointUnder(const QPoint& pixel) const;

    OruScene scene_;
    OruSceneEventContext context_;
    bool stale_ = true;
    Fit fit_;
};

} // namespace hostkit
