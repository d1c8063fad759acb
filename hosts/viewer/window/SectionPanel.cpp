#include "hosts/viewer/window/SectionPanel.h"

#include "contracts/vis/OruVisList.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/viewer/window/Decimals.h"
#include "hosts/viewer/window/Section.h"
#include "hosts/widgets/SceneWidget.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSlider>

#include <cmath>

namespace {

constexpr int sliderSteps = 1000;
constexpr const char* axisTexts[] = {"Across X", "Across Y", "Across Z"};

/// So many digits of the extent tell the step of a slider.
constexpr int toldDigits = 3;

} // namespace

SectionPanel::SectionPanel(hostkit::SceneWidget& view, Section& section, QWidget* parent)
    : QWidget(parent)
    , view_(view)
    , section_(section)
{
    auto* const layout = new QGridLayout(this);
    for (int axis = 0; axis < 3; ++axis) {
        makeRow(axis, *layout);
        connectRow(axis);
    }
    layout->setRowStretch(layout->rowCount(), 1);
    connect(&view.window(), &hostkit::SceneWindow::frameDrawn, this, [this] { follow(); });
    follow();
}

QSize SectionPanel::sizeHint() const
{
    return {280, 220};
}

void SectionPanel::makeRow(int axis, QGridLayout& layout)
{
    Row& row = rows_[static_cast<std::size_t>(axis)];
    row.active = new QCheckBox(tr(axisTexts[axis]));
    row.slider = new QSlider(Qt::Horizontal);
    row.slider->setRange(0, sliderSteps);
    row.position = new QDoubleSpinBox;
    row.position->setKeyboardTracking(false);
    row.flipped = new QCheckBox(tr("Other side"));
    const int line = 2 * axis;
    layout.addWidget(row.active, line, 0);
    layout.addWidget(row.position, line, 1);
    layout.addWidget(row.flipped, line, 2);
    layout.addWidget(row.slider, line + 1, 0, 1, 3);
}

void SectionPanel::connectRow(int axis)
{
    const Row& row = rows_[static_cast<std::size_t>(axis)];
    connect(row.active, &QCheckBox::clicked, this, [=](bool on) { section_.setActive(axis, on); });
    connect(row.flipped, &QCheckBox::clicked, this, [=](bool on) { section_.setFlipped(axis, on); });
    connect(row.position, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, [=](double value) {
        if (!following_) {
            section_.setPosition(axis, value - originOn(axis));
        }
    });
    // A person who has typed a number looks at what came of it; the keys are those of the view again.
    auto* const typed = row.position->findChild<QLineEdit*>();
    connect(typed, &QLineEdit::returnPressed, this, [=] {
        typed->setModified(false);
        view_.setFocus();
    });
    const auto wanted = [=] {
        double low = 0.0;
        double high = 0.0;
        section_.range(axis, low, high);
        return low + (high - low) * row.slider->value() / sliderSteps;
    };
    connect(row.slider, &QSlider::valueChanged, this, [=] {
        if (row.slider->isSliderDown()) {
            section_.slide(axis, wanted());
        } else if (!following_) {
            section_.setPosition(axis, wanted());
        }
    });
    connect(row.slider, &QSlider::sliderReleased, this, [=] {
        if (section_.sliding()) {
            section_.setPosition(axis, wanted());
        }
    });
}

void SectionPanel::follow()
{
    const QScopedValueRollback<bool> following(following_, true);
    for (int axis = 0; axis < 3; ++axis) {
        followRow(axis);
    }
}

void SectionPanel::followRow(int axis)
{
    const Row& row = rows_[static_cast<std::size_t>(axis)];
    double low = 0.0;
    double high = 0.0;
    const bool there = section_.range(axis, low, high);
    const bool active = section_.isActive(axis);
    row.active->setEnabled(there);
    row.active->setChecked(active);
    row.flipped->setChecked(section_.isFlipped(axis));
    for (QWidget* const part : {static_cast<QWidget*>(row.slider), static_cast<QWidget*>(row.position),
                                static_cast<QWidget*>(row.flipped)}) {
        part->setEnabled(there && active);
    }
    if (!there || high <= low) {
        return;
    }
    const double origin = originOn(axis);
    const double at = section_.position(axis);
    row.position->setDecimals(decimalsFor(high - low, toldDigits));
    row.position->setSingleStep((high - low) / 100.0);
    row.position->setRange(low + origin, high + origin);
    const bool typing = row.position->hasFocus() && row.position->findChild<QLineEdit*>()->isModified();
    if (!typing) {
        row.position->setValue(at + origin);
    }
    if (!row.slider->isSliderDown()) {
        row.slider->setValue(static_cast<int>(std::lround((at - low) / (high - low) * sliderSteps)));
    }
}

/// Coordinates that people see are those of the file.
double SectionPanel::originOn(int axis) const
{
    const OruVisList* const all =
        view_.window().hasScene() ? &view_.host().scene().render.visualizations : nullptr;
    for (unsigned int i = 0; all && i < all->size(); ++i) {
        if (const auto* const model = dynamic_cast<const hostkit::ModelList*>(all->at(i))) {
            return model->origin()[static_cast<std::size_t>(axis)];
        }
    }
    return 0.0;
}
