#include "hosts/host/internal/OverlaySizes.h"

#include "contracts/core/OruProperties.h"
#include "contracts/vis/OruVisImage.h"
#include "contracts/vis/OruVisTriad.h"
#include "hosts/host/internal/TreeValues.h"

#include <cmath>

namespace hostkit {

namespace {

/// A size that nodes have.
struct OverlaySize
{
    /// Null: of any type.
    const QString* type;
    const char* key;
    /// A whole number.
    bool whole;
    /// In what the property "unit" says, which may be other than pixels.
    bool hasUnit;
};

const OverlaySize sizes[] = {
    {&OruVisTriad::typeString, "length", false, false},
    {&OruVisTriad::typeString, "margin", false, false},
    {nullptr, "textSize", true, false},
    {&OruVisImage::typeString, "height", false, true},
    {&OruVisImage::typeString, "marginLeft", false, true},
    {&OruVisImage::typeString, "marginRight", false, true},
    {&OruVisImage::typeString, "marginTop", false, true},
    {&OruVisImage::typeString, "marginBottom", false, true},
    {&OruVisImage::typeString, "minimumHeight", false, false},
};

bool inPixels(const OruProperties& node)
{
    int unit = OruVisImage::Pixels;
    node.string().getValue(QStringLiteral("unit"), unit, OruVisImage::Pixels);
    return unit == OruVisImage::Pixels;
}

void scaleOne(OruProperties& node, const OverlaySize& size, double factor, TreeValues& values)
{
    const QString key = QLatin1String(size.key);
    double pixels = 0.0;
    node.string().getValue(key, pixels, 0.0);
    if (size.whole) {
        values.set(node, key, static_cast<int>(std::lround(pixels * factor)));
    } else {
        values.set(node, key, static_cast<float>(pixels * factor));
    }
}

} // namespace

void OverlaySizes::scale(OruProperties& root, double factor, TreeValues& values)
{
    for (const OverlaySize& size : sizes) {
        if ((!size.type || *size.type == root.type()) && !(size.hasUnit && !inPixels(root))) {
            scaleOne(root, size, factor, values);
        }
    }
    for (unsigned int i = 0; i < root.size(); ++i) {
        scale(*root.at(i), factor, values);
    }
}

} // namespace hostkit
