#include "hosts/viewer/manual/ManPage.h"

#include "hosts/viewer/ViewerOptions.h"
#include "hosts/viewer/window/ActionTable.h"
#include "hosts/viewer/window/HelpTopic.h"

namespace {

/// What troff would take for something else, and what to write instead. The backslash comes first.
const struct
{
    const char* plain;
    const char* escaped;
} escapes[] = {
    {"\\", "\\e"},  {"-", "\\-"},   {"'", "\\(aq"},  {"`", "\\(ga"},
    {"^", "\\(ha"}, {"~", "\\(ti"}, {"\"", "\\(dq"},
};

QString escaped(QString text)
{
    for (const auto& row : escapes) {
        text.replace(QLatin1String(row.plain), QLatin1String(row.escaped));
    }
    return text;
}

const char* const head = ".TH KELVAR\\-VIEW 1 \"\" \"Kelvar %1\" \"User Commands\"\n"
                         ".SH NAME\n"
                         "kelvar\\-view, kelvar\\-view\\-thumbnailer \\- viewer for 3D models\n"
                         ".SH SYNOPSIS\n"
                         ".B kelvar\\-view\n"
                         ".RI [ MODEL \"...] [\" options ]\n"
                         ".PP\n"
                         ".B kelvar\\-view\\-thumbnailer\n"
                         ".I MODEL PICTURE SIZE\n";

const HelpTopic thumbnailTopic = {
    QStringLiteral("Thumbnails"),
    QStringLiteral(
        "kelvar-view-thumbnailer draws a PNG of SIZE pixels to each side for a file manager. It may\n"
        "take 10 seconds, and 1 GiB of memory for each process; a PICTURE that does not come about\n"
        "stays as it was."),
    {}};

/// A line of a paragraph must not begin with a dot, which only requests do.
QString paragraphs(const QString& text)
{
    QString lines = escaped(text);
    lines.replace(QStringLiteral("\n."), QStringLiteral("\n\\&."));
    lines.replace(QStringLiteral("\n\n"), QStringLiteral("\n.PP\n"));
    return lines + QLatin1Char('\n');
}

/// A topic below a heading, ".SH" or ".SS".
QString laidOut(const char* heading, const QString& title, const HelpTopic& topic)
{
    QString page = QLatin1String(heading) + QStringLiteral(" \"%1\"\n").arg(escaped(title));
    if (!topic.text.isEmpty()) {
        page += paragraphs(topic.text);
    }
    for (const HelpTopic::Row& row : topic.rows) {
        page += QStringLiteral(".TP\n.B \"%1\"\n%2\n").arg(escaped(row.what), escaped(row.effect));
    }
    return page;
}

} // namespace

QString ManPage::text()
{
    QString page = QString::fromLatin1(head).arg(QStringLiteral(KELVAR_VERSION));
    for (const HelpTopic& topic : ViewerOptions::topics()) {
        page += laidOut(".SH", topic.title.toUpper(), topic);
    }
    page += laidOut(".SH", thumbnailTopic.title.toUpper(), thumbnailTopic);
    page += QStringLiteral(".SH WINDOW\n");
    for (const HelpTopic& topic : ActionTable::help()) {
        page += laidOut(".SS", topic.title, topic);
    }
    return page;
}
