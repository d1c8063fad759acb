#pragma once

#include "hosts/viewer/window/ViewPointer.h"

#include <QWidget>

class QLabel;

/// Tells in a status bar what the pointer rests on: the part, the coordinates of the point under the pointer
/// as those of the file with Z upwards and in its unit, and how long the last frame took.
class PointReadout : public QWidget
{
    Q_OBJECT

public:
    /// Both are borrowed and have to live as long.
    PointReadout(hostkit::SceneWidget& view, ViewPointer& pointer, QWidget* parent = nullptr);

    /// As in "body_8   x 12.5  y -3  z 40 mm"; empty: the pointer rests on nothing.
    QString text() const;

private:
    void tell(const ViewPointer::Target& target);
    void tellFrame();

    hostkit::SceneWidget& view_;
    QLabel* point_;
    QLabel* frame_;
};
