// A capture at 1920 x 1080 against a bare framebuffer object that is drawn, read back, and drawn once more to
// the screen, as a capture has to. And a picture with smooth edges against as many captures as it has
// samples.

#include "contracts/ogl/OruOglFunctions.h"
#include "contracts/ogl/OruOglGl.h"
#include "hosts/host/OffscreenView.h"
#include "benchmarks/BareProgram.h"
#include "benchmarks/Bench.h"
#include "benchmarks/BenchScenes.h"

#include <cstdio>
#include <stdexcept>
#include <utility>

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

/// One side in its own process: prints what its first capture takes and what a later one does, wall and
/// processor time of each.
void runSide(const QString& side, const QString& name, const QString& engineFile)
{
    const Model model = bench::buildModel(bench::makeScene(name, engineFile).arrays);
    HostScene host{QString(), QString(), QString()};
    bench::BareProgram bare;
    bench::show(host, model);
    bench::Work capture = [&] { makePicture(host); };
    if (side == QLatin1String("bare")) {
        bare.add(model);
        bare.draw(host.context().modelView, host.context().projection, bench::frameSize());
        capture = [&] { bareCapture(bare, host.context()); };
    }
    const bench::Cost first = bench::measure(capture);
    const bench::Cost later = bench::measure(capture);
    std::printf("%f %f %f %f\n", first.wall, first.processor, later.wall, later.processor);
}

/// What a process pays once: memory for the picture, and what the driver compiles for it.
void compareFirstCaptures(const QString& name, const QString& engineFile)
{
    bench::Costs first[2];
    bench::Costs later[2];
    for (int round = 0; round < 5; ++round) {
        for (const int side : {0, 1}) {
            const auto numbers =
                bench::runAlone({engineFile, QString::fromLatin1(side == 0 ? "bare" : "scene"), name});
            first[side].push_back({numbers.at(0), numbers.at(1), 0.0});
            later[side].push_back({numbers.at(2), numbers.at(3), 0.0});
        }
    }
    const QString figure = name + QStringLiteral(": first capture");
    bench::reportRatios(figure, first[1], first[0], QStringLiteral("<= 1.1"));
    for (const auto& [who, side] : {std::pair(QStringLiteral(", bare"), 0), std::pair(QString(), 1)}) {
        bench::report(figure + who + QStringLiteral(", wall"),
                      bench::medianRatio(first[side], later[side], &bench::Cost::wall),
                      QStringLiteral("of a later one"));
    }
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, [](const QStringList& arguments) {
        const hostkit::OffscreenView view(bench::frameSize());
        if (arguments.size() == 3) {
            runSide(arguments[1], arguments[2], arguments[0]);
            return;
        }
        for (const QString& name : bench::sceneNames()) {
            compareCaptures(name, arguments.value(0));
            compareSamples(name, arguments.value(0));
            compareFirstCaptures(name, arguments.value(0));
        }
    });
}
