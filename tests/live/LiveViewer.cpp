#include "tests/live/LiveViewer.h"

#include "hosts/host/Recording.h"
#include "hosts/import/ModelImporter.h"
#include "hosts/mesh/ModelParts.h"
#include "hosts/mesh/Progress.h"
#include "tests/hosts/Models.h"
#include "tests/live/ViewerProgram.h"
#include "tests/support/Files.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QScreen>
#include <QThread>

#include <gmock/gmock.h>

namespace kelvartest {

namespace {

/// So long a window may take; only a broken one does.
constexpr int patienceMilliseconds = 60000;
constexpr unsigned long pollMilliseconds = 10;

/// Asks again and again until the answer is true.
template <typename Question>
bool await(const Question& question)
{
    QElapsedTimer clock;
    clock.start();
    while (!question()) {
        if (clock.elapsed() > patienceMilliseconds) {
            return false;
        }
        QThread::msleep(pollMilliseconds);
    }
    return true;
}

/// A key that does nothing to a scene, and what a recording says of it.
const QString endKey = QStringLiteral(" key F12");
const QByteArray endLine = "key-up " + QByteArray::number(Qt::Key_F12);

} // namespace

LiveViewer::LiveViewer(const char* scale, const QStringList& options, const QSize& size)
    : size_(size)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QLatin1String(scale));
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    xdotool(QStringLiteral("mousemove 1020 764"));
    process_.start(viewerProgram(),
                   QStringList{engineFile(), "--bare", "--size", "640x480", "--save-state",
                               folder_.filePath("end.json"), "--record", folder_.filePath("session")} +
                       options);
    EXPECT_TRUE(await([&] { return !recorded().isEmpty(); })) << "the window is not there";
    prepareScene(options);
    xdotool(QStringLiteral("search --sync --onlyvisible --name Engine windowfocus windowsize %1 %2")
                .arg(size_.width())
                .arg(size_.height()));
    act(QStringLiteral("mousemove %1 3").arg(size_.width() - 3));
}

LiveViewer::~LiveViewer()
{
    process_.kill();
    process_.waitForFinished();
}

void LiveViewer::act(const QString& arguments)
{
    act(arguments + endKey, endLine);
}

void LiveViewer::act(const QString& arguments, const QByteArray& last)
{
    const int before = recorded().size() - 1;
    xdotool(arguments);
    ASSERT_TRUE(await([&] { return recorded().mid(before).contains('\n' + last); }))
        << "after " << arguments.toStdString() << " it recorded\n"
        << recorded().mid(before).toStdString();
    EXPECT_TRUE(await([&] { return shows(); }))
        << "the window does not show the scene after " << arguments.toStdString();
}

bool LiveViewer::shows()
{
    follow();
    return screen() == picture();
}

bool LiveViewer::closes(const QString& arguments)
{
    xdotool(arguments);
    return finished();
}

bool LiveViewer::terminates()
{
    process_.terminate();
    return finished();
}

bool LiveViewer::finished()
{
    return process_.waitForFinished(patienceMilliseconds) && process_.exitStatus() == QProcess::NormalExit &&
           process_.exitCode() == 0;
}

QByteArray LiveViewer::savedState() const
{
    return contentOf(folder_.filePath("end.json"));
}

QImage LiveViewer::screen() const
{
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, 0, 0, size_.width(), size_.height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

QImage LiveViewer::picture()
{
    host_->draw();
    return view_->grab().convertToFormat(QImage::Format_RGB32);
}

QByteArray LiveViewer::state() const
{
    QString error;
    const QString file = folder_.filePath("scene.json");
    EXPECT_TRUE(host_->save(file, &error)) << error.toStdString();
    return contentOf(file);
}

void LiveViewer::xdotool(const QString& arguments)
{
    EXPECT_EQ(QProcess::execute(QStringLiteral("xdotool"), arguments.split(QLatin1Char(' '))), 0)
        << arguments.toStdString();
}

QByteArray LiveViewer::recorded() const
{
    const QByteArray text = contentOf(folder_.filePath("session"));
    return text.left(text.lastIndexOf('\n') + 1);
}

/// A scene as the viewer starts with: the same parts, and the state that the viewer itself tells.
void LiveViewer::prepareScene(const QStringList& options)
{
    const QSize shown = hostkit::Recording::parse(recorded(), QString()).size;
    const QString size = QStringLiteral("%1x%2").arg(shown.width()).arg(shown.height());
    const QString start = folder_.filePath("start.json");
    QProcess viewer;
    viewer.start(viewerProgram(), QStringList{engineFile(), "--size", size, "--save-state", start, "--out",
                                              folder_.filePath("start.png")} +
                                      options);
    EXPECT_TRUE(viewer.waitForFinished(patienceMilliseconds));

    size_ = size_.isEmpty() ? shown : size_;
    view_ = std::make_unique<hostkit::OffscreenView>(size_);
    host_ = std::make_unique<hostkit::HostScene>(QString(), QString(), QString());
    host_->setSize(size_);
    hostkit::Progress progress;
    hostkit::ModelParts(host_->scene().render.visualizations)
        .add(hostkit::ModelImporter::load(engineFile(), progress));
    QString error;
    EXPECT_TRUE(host_->load(start, &error)) << error.toStdString();
    input_ = std::make_unique<hostkit::InputFeed>(*host_);
}

/// Hands the scene what has been recorded since the last time.
void LiveViewer::follow()
{
    const auto events = hostkit::Recording::parse(recorded(), QString()).events(size_);
    for (; eventsFed_ < events.size(); ++eventsFed_) {
        if (input_->apply(events[eventsFed_])) {
            host_->draw();
        }
    }
}

} // namespace kelvartest
