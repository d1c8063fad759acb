#pragma once

#include <QString>
#include <QStringList>

namespace hostkit {

/// Lines for people about what could not be had of a file: each once, and not too many of them.
class Notes
{
public:
    void add(const QString& line);

    /// The last one counts those that are too many.
    QStringList lines() const;

private:
    QStringList lines_;
    int more_ = 0;
};

} // namespace hostkit
