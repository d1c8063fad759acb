#pragma once

#include "hosts/host/HostScene.h"
#include "hosts/host/InputFeed.h"
#include "hosts/host/OffscreenView.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

namespace kelvartest {

/// The viewer with the engine in a window at the upper left of the screen, as a process of its own; and a
/// scene that gets what the viewer records, and so tells what the window has to show.
class LiveViewer
{
public:
    /// Shows the window, the pointer over nothing in a corner. `scale` is Qt's scale factor, `size` what the
    /// window gets once it is there, if any.
    explicit LiveViewer(const char* scale, const QStringList& options = {}, const QSize& size = QSize());
    ~LiveViewer();

    /// The pixels of the window.
    QSize size() const { return size_; }

    /// Has xdotool do that, waits until the window has heard of all of it, and until the screen shows what
    /// the scene would draw. Positions are those of the window.
    void act(const QString& xdotool);

    /// The same without a key behind it that tells the end: that is the first line of that beginning in the
    /// recording.
    void act(const QString& xdotool, const QByteArray& last);

    /// Ends the program by what xdotool does, or by a signal. Whether that went well.
    bool closes(const QString& xdotool);
    bool terminates();

    /// The file it saved at the end.
    QByteArray savedState() const;

    /// What it printed.
    QByteArray output() { return process_.readAllStandardOutput(); }

    /// What the window shows.
    QImage screen() const;

    hostkit::HostScene& scene() { return *host_; }

    /// The scene as a window shows it, and as a file.
    QImage picture();
    QByteArray state() const;

private:
    static void xdotool(const QString& arguments);
    QByteArray recorded() const;
    void prepareScene(const QStringList& options);
    bool shows();
    void follow();
    bool finished();

    QTemporaryDir folder_;
    QSize size_;
    std::unique_ptr<hostkit::OffscreenView> view_;
    std::unique_ptr<hostkit::HostScene> host_;
    std::unique_ptr<hostkit::InputFeed> input_;
    std::size_t eventsFed_ = 0;
    QProcess process_;
};

} // namespace kelvartest
