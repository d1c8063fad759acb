#pragma once

#include <QString>
#include <QStringList>

/// What a state file tells ahead of its use: which models it belongs to.
struct StateFile
{
    /// The files of the models that the state was saved with, in their order; where one is gone, the one of
    /// its name beside the state. Empty, and `error` says why: it is no state, damaged, or names no model.
    static QStringList modelsOf(const QString& file, QString* error);

    /// Whether it is a regular file that begins as a state does; a model is not read for that.
    static bool looksLikeOne(const QString& file);
};
