#include "contracts/vis/OruVisTriadLayout.h"

#include <algorithm>
#include <cmath>

namespace {

using Kelvar::Math::Vector3;

/// Pixels between the end of an axis and its label, and between the triad and the isometric label.
constexpr double usualGap = 3.0;

/// What a label's box has around its text, in pixels.
constexpr double sidePadding = 4.0;
constexpr double edgePadding = 1.0;

/// The distances are for texts up to that height in pixels; they grow with larger ones.
constexpr int usualTextHeight = 17;

double growthFor(const std::array<QSize, OruVisTriadLayout::labelCount>& texts)
{
    int height = usualTextHeight;
    for (const QSize& text : texts) {
        height = std::max(height, text.height());
    }
    return static_cast<double>(height) / usualTextHeight;
}

int grown(double pixels, double growth)
{
    return static_cast<int>(std::lround(pixels * growth));
}

/// Twice the extent from the center of a box in a direction of any length but 0.
double reachOf(const QSize& box, double x, double y)
{
    const double length = std::hypot(x, y);
    return length > 0.0 ? (box.width() * std::abs(x) + box.height() * std::abs(y)) / length : 0.0;
}

QRect boxAt(double x, double y, const QSize& size)
{
    const long left = std::lround(x - (size.width() - 1) / 2.0);
    const long bottom = std::lround(y - (size.height() - 1) / 2.0);
    return QRect(QPoint(static_cast<int>(left), static_cast<int>(bottom)), size);
}

/// The middle of `extent` pixels that lie at the low end, the high end or in the middle of `available`.
double middle(double extent, double available, double margin, bool low, bool high)
{
    if (low) {
        return margin + extent / 2.0 - 0.5;
    }
    return (high ? available - margin - extent / 2.0 : available / 2.0) - 0.5;
}

} // namespace

OruVisTriadLayout::OruVisTriadLayout(const Request& request)
    : growth_(growthFor(request.texts))
{
    const Vector3 units[] = {Kelvar::Math::VectorX, Kelvar::Math::VectorY, Kelvar::Math::VectorZ};
    std::transform(std::begin(units), std::end(units), axes_.begin(),
                   [&](const Vector3& unit) { return request.orientation.transformDirection(unit); });
    if (!place(request)) {
        return;
    }
    addAxisLabels(request);
    addIsometric(request);
    hideCovered();
}

QSize OruVisTriadLayout::boxSize(const QSize& text) const
{
    if (text.isEmpty()) {
        return QSize(0, 0);
    }
    const int height = text.height() + 2 * grown(edgePadding, growth_);
    return QSize(std::max(height, text.width() + 2 * grown(sidePadding, growth_)), height);
}

bool OruVisTriadLayout::place(const Request& request)
{
    QSize largest(0, 0);
    for (int i = 0; i < Isometric; ++i) {
        largest = largest.expandedTo(boxSize(request.texts[static_cast<std::size_t>(i)]));
    }
    const QSize isometric = boxSize(request.texts[Isometric]);
    const double gap = usualGap * growth_;
    const double below = isometric.isEmpty() ? 0.0 : isometric.height() + gap;
    // What lies around the tips of the axes, a pixel for rounding included, and so the longest axis for half
    // of the viewport.
    const double aroundX = gap + largest.width() + 1.0;
    const double aroundY = gap + largest.height() + 1.0;
    const double roomX = request.viewport.width() / 2.0 - request.margin;
    const double roomY = request.viewport.height() / 2.0 - request.margin - below;
    const double longest = std::min(roomX / 2.0 - aroundX, roomY / 2.0 - aroundY);
    const double length = std::min(static_cast<double>(request.length), longest);
    if (!(length > 0.0) || length < request.length / 3.0 || !std::isfinite(request.margin)) {
        return false;
    }
    length_ = static_cast<float>(length);
    const double width = 2.0 * (length + aroundX);
    const double height = 2.0 * (length + aroundY) + below;
    const int align = request.alignment;
    const double x = middle(width, request.viewport.width(), request.margin, align & Qt::AlignLeft,
                            align & Qt::AlignRight);
    const double y = middle(height, request.viewport.height(), request.margin, align & Qt::AlignBottom,
                            align & Qt::AlignTop);
    lowestRow_ = y - height / 2.0 + 0.5;
    center_ = QPointF(x, y + below / 2.0);
    return true;
}

void OruVisTriadLayout::addAxisLabels(const Request& request)
{
    for (int i = 0; i < Isometric; ++i) {
        const float sign = i < 3 ? 1.0f : -1.0f;
        const Vector3 direction = sign * axis(i % 3);
        const QSize size = boxSize(request.texts[static_cast<std::size_t>(i)]);
        const double radius = length_ + usualGap * growth_ + reachOf(size, direction.x, direction.y) / 2.0;
        const QRect box = boxAt(center_.x() + radius * direction.x, center_.y() + radius * direction.y, size);
        labels_.push_back({i, box, direction.z, !size.isEmpty()});
    }
    std::stable_sort(labels_.begin(), labels_.end(),
                     [](const Label& a, const Label& b) { return a.nearness < b.nearness; });
}

void OruVisTriadLayout::addIsometric(const Request& request)
{
    const QSize size = boxSize(request.texts[Isometric]);
    const QRect box = boxAt(center_.x(), lowestRow_ + (size.height() - 1) / 2.0, size);
    labels_.push_back({Isometric, box, 1.0f, !size.isEmpty()});
}

void OruVisTriadLayout::hideCovered()
{
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        const QPoint center = labels_[i].box.center();
        const bool covered = std::any_of(labels_.begin() + static_cast<std::ptrdiff_t>(i) + 1, labels_.end(),
                                         [&](const Label& nearer) { return nearer.box.contains(center); });
        labels_[i].shown = labels_[i].shown && !covered;
    }
}
