#include "hosts/viewer/window/HelpDialog.h"

#include "hosts/viewer/window/ActionTable.h"

#include <QDialogButtonBox>
#include <QTextBrowser>
#include <QVBoxLayout>

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
    QString html = QStringLiteral("<table cellpadding=3>");
    for (const HelpTopic& topic : ActionTable::help()) {
        html += heading(topic.title);
        for (const HelpTopic::Row& line : topic.rows) {
            html += row(line.what, line.effect);
        }
    }
    return html + QStringLiteral("</table>");
}
