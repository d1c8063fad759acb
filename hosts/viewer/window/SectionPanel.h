#pragma once

#include <QWidget>

#include <array>

class QCheckBox;
class QDoubleSpinBox;
class QGridLayout;
class QSlider;
class Section;

namespace hostkit {
class SceneWidget;
} // namespace hostkit

/// Switches, moves and flips the section planes of a view. Positions are in the coordinates of the first
/// model. A drag of a slider is one step that can be undone.
class SectionPanel : public QWidget
{
    Q_OBJECT

public:
    /// Both are borrowed and have to live as long.
    SectionPanel(hostkit::SceneWidget& view, Section& section, QWidget* parent = nullptr);

    QSize sizeHint() const override;

    QCheckBox& active(int axis) { return *rows_[static_cast<std::size_t>(axis)].active; }
    QSlider& slider(int axis) { return *rows_[static_cast<std::size_t>(axis)].slider; }
    QDoubleSpinBox& position(int axis) { return *rows_[static_cast<std::size_t>(axis)].position; }

private:
    struct Row
    {
        QCheckBox* active = nullptr;
        QSlider* slider = nullptr;
        QDoubleSpinBox* position = nullptr;
        QCheckBox* flipped = nullptr;
    };

    void makeRow(int axis, QGridLayout& layout);
    void connectRow(int axis);
    void follow();
    void followRow(int axis);
    double originOn(int axis) const;

    hostkit::SceneWidget& view_;
    Section& section_;
    std::array<Row, 3> rows_;
    /// What is shown is being brought to what is in the tree.
    bool following_ = false;
};
