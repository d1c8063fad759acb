#pragma once

#include <QString>
#include <QTemporaryDir>

class StopSignals;

/// A model that comes in through a pipe, as a file that a reader of models can open. The file is in a folder
/// of its own, which goes with the object.
class PipedModel
{
public:
    static constexpr qint64 usualMost = qint64(1) << 30;

    /// The file is named "`name`.`suffix`" and becomes `mostBytes` large at most.
    PipedModel(const QString& name, const QString& suffix, qint64 mostBytes = usualMost);

    /// Fills the file with what the descriptor holds to its end, or until a signal is raised; waits for it.
    /// False: `error` says why; nothing if it was a signal.
    bool fill(int descriptor, const StopSignals& stop, QString* error) const;

    QString file() const { return folder_.filePath(name_); }

private:
    QTemporaryDir folder_;
    QString name_;
    qint64 mostBytes_;
};
