#pragma once

class Appearance;
class Dialogs;
class Document;
class MeasureTool;
class Section;
class Selection;

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// What the actions of a window work on; all of it is borrowed from the window and lives as long.
struct Workplace
{
    hostkit::SceneWidget& view;
    Document& document;
    Appearance& appearance;
    Selection& selection;
    MeasureTool& measure;
    Section& section;
    Dialogs& dialogs;
};
