#include "hosts/viewer/window/HelpDialog.h"

#include "hosts/host/InputNames.h"
#include "hosts/viewer/window/ActionTable.h"

#include <QDialogButtonBox>
#include <QTextBrowser>
#include <QVBoxLayout>

using hostkit::InputNames;

namespace {

const QSize usualSize(560, 640);

QString row(const QString& what, const QString& effect)
{
    return QStringLiteral("<tr><td><b>%1</b></td><td>%2</td></tr>")
        .arg(what.toHtmlEscaped(), effect.toHtmlEscaped());
}

QString heading(const QString& text)
{
    return QStringLiteral("<tr><td colspan=2><h3>%1</h3></td></tr>").arg(text.toHtmlEscaped());
}

/// A key that an action has is not the scene's any more.
bool takenByAction(const InputNames::Gesture& gesture)
{
    return gesture.kind == hostkit::InputEvent::Kind::KeyPress &&
           ActionTable::rowOf(InputNames::text(gesture)) != nullptr;
}

} // namespace

HelpDialog::HelpDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keys and Gestures"));
    auto* const browser = new QTextBrowser;
    browser->setHtml(text());
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(browser);
    layout->addWidget(buttons);
    resize(usualSize);
}

QString HelpDialog::text()
{
    QString html = QStringLiteral("<table cellpadding=3>") + heading(tr("In the view"));
    for (const InputNames::Gesture& gesture : InputNames::gestures) {
        if (!takenByAction(gesture)) {
            html += row(InputNames::text(gesture), QString::fromLatin1(gesture.effect));
        }
    }
    for (const ActionTable::PointerRow& pointer : ActionTable::pointerRows()) {
        html += row(QLatin1String(pointer.gesture), QLatin1String(pointer.effect));
    }
    QString menu;
    for (const ActionTable::Row& action : ActionTable::rows()) {
        if (menu != QLatin1String(action.menu)) {
            menu = QLatin1String(action.menu);
            html += heading(ActionTable::plain(action.menu));
        }
        html += row(QLatin1String(action.keys),
                    ActionTable::plain(action.text) + QStringLiteral(": ") + QLatin1String(action.help));
    }
    return html + QStringLiteral("</table>");
}
