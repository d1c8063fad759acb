#include "TotalController.h"

#include "Bar.h"

#include "contracts/vis/OruVisList.h"

TotalController::TotalController(QWindow& window, const OruVisList& bars)
    : window_(window)
    , bars_(bars)
{
    showTotal();
}

bool TotalController::OnHoverEnter(const OruVisHitRecord&, const OruVisualization* visualization,
                                   QString& tooltip)
{
    if (dynamic_cast<const Bar*>(visualization)) {
        tooltip += QStringLiteral("\ndrag to change, click to mark");
    }
    return false;
}

bool TotalController::OnHoverLeave(const OruVisHitRecord&, const OruVisualization*, QString&)
{
    return false;
}

bool TotalController::OnDrag(const OruVisHitRecord&, const OruVisualization*, QPoint)
{
    return false;
}

bool TotalController::OnRelease(const OruVisHitRecord&, const OruVisualization*)
{
    showTotal();
    return false;
}

void TotalController::OnDrop(const OruVisHitRecord&, const OruVisHitRecord&, const OruVisualization*,
                             const OruVisualization*)
{}

bool TotalController::OnClick(const OruVisHitRecord&, const OruVisualization*, bool)
{
    return false;
}

void TotalController::showTotal()
{
    double total = 0.0;
    for (unsigned int i = 0; i < bars_.size(); ++i) {
        if (const auto* const bar = dynamic_cast<const Bar*>(bars_.at(i))) {
            total += bar->height.value();
        }
    }
    window_.setTitle(QStringLiteral("total %1 m").arg(total, 0, 'f', 2));
}
