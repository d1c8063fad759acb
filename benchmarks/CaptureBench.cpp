// A capture at 1920 x 1080 against a bare framebuffer object that is drawn, read back, and drawn once more to
// the screen, as a capture has to. And a picture with smooth edges against as many captures as it has
// samples.

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "hosts/host/OffscreenView.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <stdexcept>

namespace {

using hostkit::HostScene;
using hostkit::Model;

const QSize pictureSize(1920, 1080);
constexpr int samples = 8;

void makePicture(HostScene& host, const hostkit::PictureOptions& options = hostkit::PictureOptions())
{
    if (host.picture(pictureSize, options).isNull()) {
        throw std::runtime_error("no picture");
    }
}

unsigned int attachStorage(GLenum attachment, GLenum format)
{
    unsigned int name = 0;
    glGenRenderbuffers(1, &name);
    glBindRenderbuffer(GL_RENDERBUFFER, name);
    glRenderbufferStorage(GL_RENDERBUFFER, format, pictureSize.width(), pictureSize.height());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, name);
    return name;
}

QImage bareCapture(const bench::BareProgram& bare, const OruSceneEventContext& view)
{
    unsigned int frame = 0;
    glGenFramebuffers(1, &frame);
    glBindFramebuffer(GL_FRAMEBUFFER, frame);
    const unsigned int storage[] = {attachStorage(GL_COLOR_ATTACHMENT0, GL_RGB),
                                    attachStorage(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24)};
    const OruOglViewport viewport(0, 0, pictureSize.width(), pictureSize.height());
    bare.draw(view.modelView, glGetOrtho(viewport, view.bounds, view.modelView), pictureSize);
    QImage image(pictureSize, QImage::Format_RGB888);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadPixels(0, 0, image.width(), image.height(), GL_RGB, GL_UNSIGNED_BYTE, image.bits());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteRenderbuffers(2, storage);
    glDeleteFramebuffers(1, &frame);
    bare.draw(view.modelView, view.projection, bench::frameSize());
    return image.mirrored();
}

void compareCaptures(const QString& name, const QString& engineFile)
{
    const Model model = bench::buildModel(bench::makeScene(name, engineFile).arrays);
    HostScene host{QString(), QString(), QString()};
    bench::show(host, model);
    bench::BareProgram bare;
    bare.add(model);
    const auto costs =
        bench::interleave(9, {[&] { bareCapture(bare, host.context()); }, [&] { makePicture(host); }});
    bench::reportRatios(name + QStringLiteral(": capture of 1920 x 1080"), costs[1], costs[0],
                        QStringLiteral("<= 1.1"));
}

/// A capture draws twice, a sample once.
void compareSamples(const QString& name, const QString& engineFile)
{
    const Model model = bench::buildModel(bench::makeScene(name, engineFile).arrays);
    HostScene host{QString(), QString(), QString()};
    bench::show(host, model);
    hostkit::PictureOptions smooth;
    smooth.samples = samples;
    const auto costs = bench::interleave(5, {[&] {
                                                 for (int i = 0; i < samples; ++i) {
                                                     makePicture(host);
                                                 }
                                             },
                                             [&] { makePicture(host, smooth); }});
    bench::report(name + QStringLiteral(": picture of %1 samples, processor").arg(samples),
                  bench::medianRatio(costs[1], costs[0], &bench::Cost::processor),
                  QStringLiteral("of %1 captures").arg(samples), QStringLiteral("<= 1.0"));
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList& arguments) {
        const hostkit::OffscreenView view(bench::frameSize());
        for (const QString& name : bench::sceneNames()) {
            compareCaptures(name, arguments.value(0));
            compareSamples(name, arguments.value(0));
        }
    });
}
