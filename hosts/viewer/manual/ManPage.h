#pragma once

#include <QString>

/// The viewer's page of the manual, in the language of man(7): what --help tells, and what the window answers
/// to.
struct ManPage
{
    /// ASCII alone.
    static QString text();
};
