// consumer --out FILE.png [MODEL]: a picture of a mesh, or of the model with the component that reads files,
// by a program without a window.

#include "Scene/core/OruScene.h"
#include "Scene/core/OruSceneEventContext.h"
#include "hosts/mesh/MeshBuilder.h"
#include "hosts/mesh/ModelParts.h"
#ifdef CONSUMES_Import
#include "hosts/import/ModelImporter.h"
#endif

#include <QGuiApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>

namespace {

hostkit::Model modelOf(const QStringList& arguments)
{
#ifdef CONSUMES_Import
    hostkit::Progress progress;
    return hostkit::ModelImporter::load(arguments.value(3), progress);
#else
    hostkit::MeshSource triangle;
    triangle.material.color = Qt::red;
    triangle.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    triangle.indices = {0, 1, 2};
    hostkit::Model model;
    model.name = arguments.value(0);
    model.parts.emplace_back(hostkit::MeshBuilder::build(triangle, [](float) {}));
    return model;
#endif
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_XCB_GL_INTEGRATION", "xcb_glx");
    QGuiApplication application(argc, argv);
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext gl;
    if (!gl.create() || !gl.makeCurrent(&surface)) {
        return 1;
    }
    OruScene scene{QString(), QString(), QString()};
    hostkit::ModelParts(scene.render.visualizations).add(modelOf(QGuiApplication::arguments()));
    OruSceneEventContext ctx;
    ctx.viewport = OruOglViewport(0, 0, 960, 720);
    ctx.noDraw = true;
    scene.drawGl(ctx);
    ctx.noDraw = false;
    scene.zpr.zoomTo(ctx, OruSceneZpr::ViewZ, ctx.modelView);
    scene.setViewpoint(ctx.viewpointName, ctx.modelView);
    QImage picture;
    return scene.drawGl(ctx, picture) && picture.save(QGuiApplication::arguments().value(2)) ? 0 : 1;
}
