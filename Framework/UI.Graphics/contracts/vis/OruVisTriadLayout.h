#pragma once

#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/vis/kelvar_vis_api.h"

#include <QPointF>
#include <QRect>
#include <QSize>

#include <array>
#include <vector>

/// Where the parts of an axis triad lie in a viewport: plain numbers, no OpenGL.
///
/// Coordinates are those of the 2D passes: pixels of the viewport, y up, pixel centers at whole numbers. The
/// rectangles' top() is their lowest row.
class KELVAR_VIS_API OruVisTriadLayout
{
public:
    /// The labels by number: the ends of X, Y and Z, those of -X, -Y and -Z, and the isometric view.
    static constexpr int labelCount = 7;
    static constexpr int Isometric = 6;

    struct Request
    {
        QSize viewport;
        /// Model to eye, rotation alone.
        Kelvar::Math::Matrix orientation;
        /// Qt::AlignmentFlag values.
        int alignment = 0;
        /// Length of an axis and distance from the sides, in pixels.
        float length = 0.0f;
        float margin = 0.0f;
        /// Extents of the texts; an empty one has no label.
        std::array<QSize, labelCount> texts;
    };

    struct Label
    {
        int number;
        QRect box;
        /// Eye coordinate along the view, -1 behind to 1 in front; 1 for the isometric label.
        float nearness;
        /// False behind another label's box.
        bool shown;
    };

    explicit OruVisTriadLayout(const Request& request);

    /// False when the viewport has no room; there are no labels then.
    bool fits() const { return length_ > 0.0f; }

    /// Length of an axis in this viewport, in pixels.
    float length() const { return length_; }

    QPointF center() const { return center_; }

    /// Unit vector of axis 0, 1 or 2 in eye coordinates.
    const Kelvar::Math::Vector3& axis(int index) const { return axes_[static_cast<std::size_t>(index)]; }

    /// In drawing order: the farthest first, the isometric label last.
    const std::vector<Label>& labels() const { return labels_; }

private:
    QSize boxSize(const QSize& text) const;
    bool place(const Request& request);
    void addAxisLabels(const Request& request);
    void addIsometric(const Request& request);
    void hideCovered();

    /// Of the distances around the texts.
    double growth_;
    float length_ = 0.0f;
    QPointF center_;
    double lowestRow_ = 0.0;
    std::array<Kelvar::Math::Vector3, 3> axes_;
    std::vector<Label> labels_;
};
