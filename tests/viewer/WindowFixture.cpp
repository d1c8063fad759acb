#include "tests/viewer/WindowFixture.h"

#include "contracts/core/OruPropertiesFile.h"
#include "hosts/mesh/PartVisualization.h"

#include <QApplication>
#include <QFile>
#include <QSettings>

#include <algorithm>

namespace kelvartest {

std::string firstDifference(const QByteArray& text, const QByteArray& other)
{
    const QList<QByteArray> lines = text.split('\n');
    const QList<QByteArray> others = other.split('\n');
    const auto [line, otherLine] = std::mismatch(lines.begin(), lines.end(), others.begin(), others.end());
    const auto shown = [](const auto& at, const auto& end) {
        return at == end ? std::string("(end)") : at->toStdString();
    };
    return shown(line, lines.end()) + "\n" + shown(otherLine, others.end());
}

WindowFixture::NoSettings::NoSettings()
{
    QSettings().clear();
}

WindowFixture::WindowFixture()
{
    window.setGeometry(0, 0, 1000, 700);
}

void WindowFixture::open(const QStringList& files)
{
    window.document().openAny(files);
    ASSERT_TRUE(loaded());
}

void WindowFixture::show()
{
    window.show();
    ASSERT_TRUE(await([&] { return window.view().window().isExposed(); }));
    WidgetsFixture::act(QStringLiteral("mousemove 1100 790 windowfocus %1").arg(window.winId()));
    ASSERT_TRUE(await([&] { return window.isActiveWindow(); }));
}

QString WindowFixture::copied(const QString& model, const QString& name)
{
    QString copy = folder.filePath(name);
    QFile::remove(copy);
    EXPECT_TRUE(QFile::copy(model, copy)) << model.toStdString();
    return copy;
}

void WindowFixture::keys(const QString& names)
{
    // There is no window manager that would give the keyboard back when a dialog closes.
    WidgetsFixture::act(QStringLiteral("windowfocus %1").arg(window.winId()));
    window.view().setFocus();
    WidgetsFixture::act(QStringLiteral("key ") + names);
}

hostkit::PartVisualization& WindowFixture::part(const QString& path)
{
    OruProperties* const node = window.view().host().scene().find("render/visualization/" + path);
    return dynamic_cast<hostkit::PartVisualization&>(*node);
}

QByteArray WindowFixture::tree()
{
    return OruPropertiesFile::text(window.view().host().scene());
}

bool WindowFixture::loaded()
{
    return await([&] { return !window.document().loading(); });
}

} // namespace kelvartest
