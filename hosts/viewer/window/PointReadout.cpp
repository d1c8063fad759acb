#include "hosts/viewer/window/PointReadout.h"

#include "contracts/vis/OruVisualization.h"
#include "hosts/mesh/ModelList.h"
#include "hosts/mesh/PartPlace.h"
#include "hosts/viewer/window/Decimals.h"
#include "hosts/widgets/SceneWidget.h"

#include <QHBoxLayout>
#include <QLabel>

namespace {

/// So many digits of a model's extent are told of a point.
constexpr int toldDigits = 4;

} // namespace

PointReadout::PointReadout(hostkit::SceneWidget& view, ViewPointer& pointer, QWidget* parent)
    : QWidget(parent)
    , view_(view)
    , point_(new QLabel)
    , frame_(new QLabel)
{
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(point_, 1);
    layout->addWidget(frame_);
    connect(&pointer, &ViewPointer::hovered, this,
            [this](const ViewPointer::Target& target) { tell(target); });
    connect(&pointer, &ViewPointer::left, point_, &QLabel::clear);
    connect(&view.window(), &hostkit::SceneWindow::frameDrawn, this, [this] { tellFrame(); });
}

QString PointReadout::text() const
{
    return point_->text();
}

void PointReadout::tell(const ViewPointer::Target& target)
{
    const hostkit::ModelList* const model =
        target.object ? hostkit::PartPlace::modelOf(*target.object) : nullptr;
    if (!model) {
        point_->setText(target.object ? target.object->name() : QString());
        return;
    }
    const hostkit::Origin origin = model->origin();
    const Kelvar::Math::BoundingBox box = model->bounds();
    const int decimals =
        box.defined() ? decimalsFor(static_cast<double>((box.max() - box.min()).length()), toldDigits) : 0;
    const float at[] = {target.point.x, target.point.y, target.point.z};
    QString text = target.object->name() + QStringLiteral("  ");
    for (int axis = 0; axis < 3; ++axis) {
        text += QStringLiteral("  %1 %2")
                    .arg(QLatin1Char("xyz"[axis]))
                    .arg(origin[static_cast<std::size_t>(axis)] + static_cast<double>(at[axis]), 0, 'f',
                         decimals);
    }
    QString unit;
    model->getValue(QStringLiteral("unit"), unit, QString());
    point_->setText(unit.isEmpty() ? text : text + QLatin1Char(' ') + unit);
}

void PointReadout::tellFrame()
{
    frame_->setText(tr("%1 ms").arg(view_.window().frameMilliseconds(), 0, 'f', 1));
}
