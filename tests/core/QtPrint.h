#pragma once

#include <QPoint>
#include <QString>

#include <ostream>

/// How GoogleTest shows Qt's values in its messages.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QPoint& point, std::ostream* out)
{
    *out << '(' << point.x() << ", " << point.y() << ')';
}
