#pragma once

#include "hosts/host/InputEvent.h"
#include "hosts/host/kelvar_host_api.h"

#include <QPointF>
#include <QSize>
#include <QString>
#include <QStringList>

#include <stdexcept>
#include <utility>
#include <vector>

namespace hostkit {

/// A session with a view, as text that a person can read and mend: one event a line.
///
///     kelvar-recording 1
///     size 1280x800
///     model engine.glb
///     # what comes behind the head is what the person did
///     press left - 0.25 0.5
///     move ctrl 0.26 0.5
///     wheel 1 - 0.5 0.5
///     pinch 1.25 0.5 0.5
///     key F shift
///
/// Positions are fractions of the view, from its lower left corner, so a recording can be played at any size;
/// at the size of the recording every event falls on the very pixel that it had. Buttons, modifiers and
/// keys have the names of InputNames. Modifiers are "-", or names joined by '+', or a number. Empty lines,
/// and lines that start with '#', are skipped. A text with a line break, a blank at an end or the like stands
/// in quotes, with `\"`, `\\` and `\u000a` for what is not plain.
class KELVAR_HOST_API Recording
{
public:
    /// A file that is no recording; what() is "file:line: reason".
    struct KELVAR_HOST_API Error : std::runtime_error
    {
        using std::runtime_error::runtime_error;
    };

    /// Throws Error.
    static Recording read(const QString& file);

    /// The same for a text; `name` stands for the file in errors.
    static Recording parse(const QByteArray& text, const QString& name);

    /// The head as text, its line ends included.
    QByteArray head() const;

    /// One event as a line with its end, for a view of `view` pixels.
    static QByteArray line(const InputEvent& event, const QSize& view);

    /// The events on a view of `view` pixels.
    std::vector<InputEvent> events(const QSize& view) const;

    /// Pixels of the view that was recorded, and what it showed.
    QSize size;
    QStringList models;
    /// A standard position to start from; empty: the usual one.
    QString position;
    /// How the surfaces of the models were shown, in the words of whoever shows them; empty: as usual.
    QString edges;
    /// Path and value of each property that was set at the start.
    std::vector<std::pair<QString, QString>> settings;

private:
    struct Step
    {
        InputEvent event;
        QPointF place;
    };

    class Parser;

    std::vector<Step> steps_;
};

} // namespace hostkit
