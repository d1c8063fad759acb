#pragma once

#include "Scene/controller/IOruSceneController.h"

#include <QWindow>

class OruVisList;

/// What the host itself has to say: the total of all bars in the window's title, and a hint in the tooltip.
class TotalController : public IOruSceneController
{
public:
    /// Both are borrowed and outlive the controller.
    TotalController(QWindow& window, const OruVisList& bars);

    bool OnHoverEnter(const OruVisHitRecord& hit, const OruVisualization* visualization,
                      QString& tooltip) override;
    bool OnHoverLeave(const OruVisHitRecord& hit, const OruVisualization* visualization,
                      QString& tooltip) override;
    bool OnDrag(const OruVisHitRecord& hit, const OruVisualization* visualization, QPoint delta) override;
    bool OnRelease(const OruVisHitRecord& hit, const OruVisualization* visualization) override;
    void OnDrop(const OruVisHitRecord& hit, const OruVisHitRecord& target,
                const OruVisualization* sourceVisualization,
                const OruVisualization* targetVisualization) override;
    bool OnClick(const OruVisHitRecord& hit, const OruVisualization* visualization,
                 bool withModifier) override;

    void showTotal();

private:
    QWindow& window_;
    const OruVisList& bars_;
};
