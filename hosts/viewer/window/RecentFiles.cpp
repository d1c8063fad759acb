#include "hosts/viewer/window/RecentFiles.h"

#include <QFileInfo>
#include <QMenu>
#include <QSettings>

#include <algorithm>

namespace {

const QString settingsKey = QStringLiteral("recentFiles");

} // namespace

RecentFiles::RecentFiles(QObject* parent)
    : QObject(parent)
{}

void RecentFiles::add(const QStringList& files)
{
    QSettings settings;
    QStringList kept = settings.value(settingsKey).toStringList();
    std::for_each(files.rbegin(), files.rend(), [&](const QString& file) {
        kept.removeAll(file);
        kept.prepend(file);
    });
    settings.setValue(settingsKey, QStringList(kept.mid(0, most)));
}

QStringList RecentFiles::files()
{
    QStringList there;
    for (const QString& file : QSettings().value(settingsKey).toStringList()) {
        if (QFileInfo::exists(file)) {
            there.append(file);
        }
    }
    return there;
}

void RecentFiles::fill(QMenu& menu)
{
    connect(&menu, &QMenu::aboutToShow, this, [this, &menu] {
        menu.clear();
        for (const QString& file : files()) {
            menu.addAction(QFileInfo(file).fileName(), this, [this, file] { Q_EMIT chosen(file); })
                ->setToolTip(file);
        }
        if (menu.isEmpty()) {
            menu.addAction(tr("None"))->setEnabled(false);
        }
    });
    menu.setToolTipsVisible(true);
}
