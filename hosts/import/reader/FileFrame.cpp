#include "hosts/import/reader/FileFrame.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace hostkit {

using Kelvar::Math::Matrix;

namespace {

struct FormatRow
{
    const char* format;
    UpAxis::Direction up;
    /// assimp's reader turns Z up into Y up; seen in its results.
    bool turned;
};

/// Of formats in which files do not say it. Any other one has Y upwards, as assimp's own frame has.
constexpr FormatRow formats[] = {
    {"3ds", UpAxis::Z, true},     // 3D Studio: a person stands along Z
    {"ase", UpAxis::Z, true},     // 3D Studio Max, exported as text
    {"dxf", UpAxis::Z, true},     // AutoCAD: plans lie in XY
    {"ifc", UpAxis::Z, true},     // buildings; defined so
    {"md2", UpAxis::Z, true},     // Quake and what was built on it: maps lie in XY
    {"md3", UpAxis::Z, true},     // the same
    {"md5mesh", UpAxis::Z, true}, // the same
    {"mdc", UpAxis::Z, true},     // the same
    {"mdl", UpAxis::Z, true},     // the same
    {"iqm", UpAxis::Z, true},     // the same
    {"smd", UpAxis::Z, false},    // the same, untouched by assimp
    {"bsp", UpAxis::Z, false},    // the same
    {"3d", UpAxis::Z, false},     // Unreal: maps lie in XY
    {"hmp", UpAxis::Z, false},    // heights of a terrain stand along Z
    {"ter", UpAxis::Z, false},    // the same
    {"stl", UpAxis::Z, false},    // CAD and printers: the plate lies in XY
    {"amf", UpAxis::Z, false},    // defined for printers: the plate lies in XY
    {"3mf", UpAxis::Z, false},    // the same
    {"blend", UpAxis::Z, false},  // Blender's own frame
    {"cob", UpAxis::Z, false},    // trueSpace: the ground lies in XY
    {"csm", UpAxis::Z, false},    // 3D Studio Max's motion capture
    {"q3o", UpAxis::Z, false},    // Quick3D: walkers stand along Z
    {"xgl", UpAxis::Z, false},    // CAD programs export it; people stand along Z
    {"enff", UpAxis::Z, false},   // pictures of ray tracers: the scenes of its makers have Z upwards
    {"ogex", UpAxis::Z, false},   // Z unless the file says otherwise, which assimp does not hand on
};

/// FBX gives axis 0, 1 or 2 and a sign.
std::optional<UpAxis> upByMetadata(const aiScene& scene)
{
    int axis = 0;
    int sign = 1;
    if (!scene.mMetaData || !scene.mMetaData->Get("UpAxis", axis) || axis < 0 || axis > 2) {
        return std::nullopt;
    }
    scene.mMetaData->Get("UpAxisSign", sign);
    return UpAxis(static_cast<UpAxis::Direction>(2 * axis + (sign < 0 ? 1 : 0)));
}

/// COLLADA's axis, which assimp has turned to Y by the outermost node: it is what that node takes to Y.
UpAxis upByTurn(const aiScene& scene)
{
    const aiMatrix4x4& turn = scene.mRootNode->mTransformation;
    const float toY[3] = {turn.b1, turn.b2, turn.b3};
    const auto* const axis = std::max_element(std::begin(toY), std::end(toY),
                                              [](float a, float b) { return std::fabs(a) < std::fabs(b); });
    return UpAxis(static_cast<UpAxis::Direction>(2 * (axis - toY)));
}

} // namespace

FileFrame FileFrame::of(const aiScene& scene, const std::string& format)
{
    if (format == "fbx") {
        return {upByMetadata(scene).value_or(UpAxis::Y), false};
    }
    if (format == "dae") {
        return {upByTurn(scene), true};
    }
    const auto* const row = std::find_if(std::begin(formats), std::end(formats),
                                         [&](const FormatRow& known) { return format == known.format; });
    return row != std::end(formats) ? FileFrame{row->up, row->turned} : FileFrame{UpAxis::Y, false};
}

Matrix FileFrame::toScene() const
{
    return turned ? UpAxis(UpAxis::Y).toZ() : up.toZ();
}

} // namespace hostkit
