#pragma once

#include <QObject>
#include <QStringList>

class QMenu;

/// The files that were opened last, kept from one run to the next, as a menu.
class RecentFiles : public QObject
{
    Q_OBJECT

public:
    static constexpr int most = 10;

    explicit RecentFiles(QObject* parent = nullptr);

    /// Puts them in front.
    void add(const QStringList& files);

    /// Those that still are there, the last one first.
    static QStringList files();

    /// Fills the menu each time it is opened. It is borrowed.
    void fill(QMenu& menu);

Q_SIGNALS:
    void chosen(const QString& file);
};
