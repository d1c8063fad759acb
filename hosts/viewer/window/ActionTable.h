#pragma once

#include "hosts/viewer/window/HelpTopic.h"

#include <QString>

#include <vector>

struct Workplace;

/// All that the window can be asked to do, a row each: menus, toolbar, help and tests are made of it.
struct ActionTable
{
    struct Row
    {
        /// Names the action in tests; never shown.
        const char* name;
        /// With '&' ahead of the letter that opens it by keyboard. Rows of one menu follow each other.
        const char* menu;
        const char* text;
        /// As QKeySequence reads it.
        const char* keys;
        /// A phrase without an end.
        const char* help;
        /// The text on the toolbar; empty: not there.
        const char* button;
        /// Null: always.
        bool (*enabled)(const Workplace&);
        /// Whether it is on; null: there is no on and off.
        bool (*on)(const Workplace&);
        void (*run)(Workplace&);
        /// A line goes ahead of it in its menu.
        bool first;
        /// Opens a dialog and waits for a person.
        bool asks;
    };

    static const std::vector<Row>& rows();

    /// The row of that name, or with those keys; null: none.
    static const Row* named(const QString& name);
    static const Row* rowOf(const QString& keys);

    /// A text of the table without its '&'.
    static QString plain(const char* text);

    /// What the window does with the pointer in the view beyond every view.
    struct PointerRow
    {
        const char* gesture;
        const char* effect;
    };
    static const std::vector<PointerRow>& pointerRows();

    /// What there is to do in the view, with the gestures that every view knows, and then in each menu.
    static std::vector<HelpTopic> help();
};
