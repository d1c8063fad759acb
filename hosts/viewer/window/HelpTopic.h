#pragma once

#include <QString>

#include <vector>

/// A part of the help, told once and laid out by whoever shows it: as text, as HTML, as a page of the manual.
struct HelpTopic
{
    struct Row
    {
        /// What there is to write or to do.
        QString what;
        /// What it is for, as a phrase without an end.
        QString effect;
    };

    QString title;
    /// Paragraphs, parted by empty lines, ahead of the rows; empty: none.
    QString text;
    std::vector<Row> rows;
};
