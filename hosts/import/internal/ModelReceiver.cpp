#include "hosts/import/internal/ModelReceiver.h"

#include "hosts/import/internal/PipeReader.h"
#include "hosts/import/internal/ReaderProtocol.h"

#include <QColor>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace hostkit {

using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;
using Tag = ReaderProtocol::Tag;

namespace {

/// Arrays with one element for each position, or none.
template <typename Array>
bool fits(const Array& array, const MeshSource& mesh)
{
    return array.empty() || array.size() == mesh.positions.size();
}

} // namespace

/// What is done with a message.
struct ModelReceiver::Row
{
    Tag tag;
    void (ModelReceiver::*receive)();
};

ModelSource ModelReceiver::receive(const ReportShare& report)
{
    static constexpr Row rows[] = {
        {Tag::Texture, &ModelReceiver::receiveTexture}, {Tag::Mesh, &ModelReceiver::receiveMesh},
        {Tag::Node, &ModelReceiver::receiveNode},       {Tag::Use, &ModelReceiver::receiveUse},
        {Tag::Frame, &ModelReceiver::receiveFrame},     {Tag::Property, &ModelReceiver::receiveProperty},
        {Tag::Note, &ModelReceiver::receiveNote},
    };
    for (;;) {
        const auto tag = in_.value<Tag>();
        if (tag == Tag::Done) {
            return std::move(model_);
        }
        if (tag == Tag::Error) {
            throw std::runtime_error(in_.array<std::string>());
        }
        if (tag == Tag::Share) {
            report(in_.value<float>());
            continue;
        }
        const auto* const row = std::find_if(std::begin(rows), std::end(rows),
                                             [tag](const Row& known) { return known.tag == tag; });
        if (row == std::end(rows)) {
            PipeReader::failAsConfused();
        }
        (this->*row->receive)();
    }
}

/// An enumerator from the first to the `last` of its kind.
template <typename Enumeration>
Enumeration ModelReceiver::choice(Enumeration last)
{
    using Number = std::make_unsigned_t<std::underlying_type_t<Enumeration>>;
    const auto number = in_.value<Number>();
    if (number > static_cast<Number>(last)) {
        PipeReader::failAsConfused();
    }
    return static_cast<Enumeration>(number);
}

std::uint32_t ModelReceiver::index(std::size_t count)
{
    const auto number = in_.value<std::uint32_t>();
    if (number >= count) {
        PipeReader::failAsConfused();
    }
    return number;
}

void ModelReceiver::receiveTexture()
{
    auto texture = std::make_shared<Texture>();
    texture->name = in_.text();
    texture->wrapS = choice(Texture::Wrap::Clamp);
    texture->wrapT = choice(Texture::Wrap::Clamp);
    const auto width = in_.value<std::uint32_t>();
    const auto height = in_.value<std::uint32_t>();
    const bool alpha = in_.value<std::uint8_t>() != 0;
    constexpr std::uint32_t largest = ReaderProtocol::largestSide;
    if (width == 0 || height == 0 || width > largest || height > largest) {
        PipeReader::failAsConfused();
    }
    in_.expect(std::uint64_t(width) * height, 4);
    texture->image = QImage(static_cast<int>(width), static_cast<int>(height),
                            alpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    if (texture->image.isNull()) {
        throw std::bad_alloc();
    }
    for (int row = 0; row < texture->image.height(); ++row) {
        in_.bytes(texture->image.scanLine(row), std::size_t(width) * 4);
    }
    textures_.push_back(std::move(texture));
}

void ModelReceiver::receiveMesh()
{
    MeshSource mesh;
    mesh.name = in_.text();
    mesh.primitive = choice(Primitive::Points);
    mesh.material.color = QColor::fromRgba(in_.value<QRgb>());
    const auto texture = in_.value<std::uint32_t>();
    if (texture < textures_.size()) {
        mesh.material.texture = textures_[texture];
    } else if (texture != ReaderProtocol::noTexture) {
        PipeReader::failAsConfused();
    }
    mesh.material.alpha = choice(Material::Alpha::Blend);
    mesh.material.cutoff = in_.value<float>();
    mesh.positions = in_.array<std::vector<Vector3>>();
    mesh.normals = in_.array<std::vector<Vector3>>();
    mesh.colors = in_.array<std::vector<std::uint32_t>>();
    mesh.texturePoints = in_.array<std::vector<TexturePoint>>();
    mesh.indices = in_.array<std::vector<std::uint32_t>>();
    if (!fits(mesh.normals, mesh) || !fits(mesh.colors, mesh) || !fits(mesh.texturePoints, mesh)) {
        PipeReader::failAsConfused();
    }
    model_.meshes.push_back(std::move(mesh));
}

void ModelReceiver::receiveNode()
{
    const std::uint32_t parent = index(model_.nodes.size());
    const unsigned int level = levels_[parent] + 1;
    if (level > ReaderProtocol::mostLevels) {
        PipeReader::failAsConfused();
    }
    levels_.push_back(level);
    model_.nodes.push_back({parent, in_.text()});
}

void ModelReceiver::receiveUse()
{
    ModelSource::Use use{index(model_.nodes.size()), index(model_.meshes.size()), in_.text(), Matrix()};
    use.placement = in_.value<Matrix>();
    if (!use.placement.isFinite()) {
        PipeReader::failAsConfused();
    }
    model_.uses.push_back(std::move(use));
}

void ModelReceiver::receiveFrame()
{
    model_.up = choice(UpAxis::MinusZ);
    model_.origin = in_.value<Origin>();
    if (!std::all_of(model_.origin.begin(), model_.origin.end(), [](double x) { return std::isfinite(x); })) {
        PipeReader::failAsConfused();
    }
}

void ModelReceiver::receiveProperty()
{
    QString key = in_.text();
    model_.properties.emplace_back(std::move(key), in_.text());
}

void ModelReceiver::receiveNote()
{
    if (model_.notes.size() >= ReaderProtocol::mostNotes) {
        PipeReader::failAsConfused();
    }
    model_.notes.append(in_.text());
}

} // namespace hostkit
