#include "hosts/mesh/ModelList.h"

#include "contracts/core/OruText.h"
#include "contracts/math/BoundingBox.h"
#include "contracts/math/DoubleMatrix.h"
#include "contracts/math/Vector3.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/vis/OruVisHitRecordList.h"
#include "hosts/mesh/SectionPlanes.h"
#include "hosts/mesh/internal/CutFaces.h"
#include "hosts/mesh/internal/SectionClip.h"
#include "hosts/mesh/internal/SharedSurfaces.h"

namespace hostkit {

using Kelvar::Math::BoundingBox;
using Kelvar::Math::DoubleMatrix;
using Kelvar::Math::Matrix;
using Kelvar::Math::Vector3;

namespace {

const QString originKey = QStringLiteral("origin");

/// From one origin to another; their difference is rounded once.
Matrix between(const Origin& from, const Origin& to)
{
    return Matrix::translate(Vector3(static_cast<float>(to[0] - from[0]), static_cast<float>(to[1] - from[1]),
                                     static_cast<float>(to[2] - from[2])));
}

QString textOf(const Origin& origin)
{
    return QStringLiteral("%1 %2 %3")
        .arg(oru::toString(origin[0]), oru::toString(origin[1]), oru::toString(origin[2]));
}

/// The frame of a list on top of the current one of OpenGL.
class Frame
{
public:
    explicit Frame(const Matrix& place)
    {
        glPushMatrix();
        glMultMatrixf(place.data());
    }
    ~Frame() { glPopMatrix(); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

} // namespace

const QString ModelList::typeString = QStringLiteral("hostkit.model");

ModelList::ModelList(OruModifiedGroup& modifiedGroup, const Model& model, const Origin& sceneOrigin)
    : PartList(modifiedGroup, model.name)
    , up(*this, QStringLiteral("up"), model.up.name(), QString())
    , fileUp_(model.up)
    , sceneOrigin_(sceneOrigin)
    , shift_(between(sceneOrigin, model.origin))
    , surfaces_(std::make_unique<SharedSurfaces>(*this))
{
    setType(typeString);
    up.setKind(UpAxis::kind);
    string().setValue(originKey, textOf(origin()));
    for (const auto& [key, value] : model.properties) {
        if (!string().defined(key)) {
            string().setValue(key, value);
        }
    }
}

ModelList::~ModelList() = default;

const ModelList::Stand& ModelList::stand() const
{
    if (stand_.revision != revision()) {
        stand_.revision = revision();
        stand_.turn = fileUp_.toZ().inverse() * UpAxis::named(up.value()).value_or(fileUp_).toZ();
        stand_.place = shift_ * stand_.turn;
        stand_.placed = stand_.place != Matrix();
    }
    return stand_;
}

Origin ModelList::origin() const
{
    double turned[4];
    DoubleMatrix(stand().turn).transform(sceneOrigin_.data(), turned);
    return {turned[0], turned[1], turned[2]};
}

void ModelList::update(const DrawContext& context)
{
    string().setValue(originKey, textOf(origin()));
    surfaces_->update(context.geometry);
    PartList::update(context);
}

/// The faces of a section come first: they are solid, and what shines through is drawn over them.
void ModelList::draw3d(const DrawContext& context)
{
    const SectionPlanes* const section = SectionPlanes::beside(*this);
    if (!section || section->active().empty()) {
        drawWhole(context);
        return;
    }
    CutFaces(*section, *this, stand().place, context).draw();
    DrawContext own(context);
    own.keepDeferredInside();
    const SectionClip clip(*section);
    drawWhole(own);
}

void ModelList::drawWhole(const DrawContext& context)
{
    if (!stand().placed) {
        drawParts(context);
        return;
    }
    DrawContext own(context);
    own.modelView = stand().place * context.modelView;
    const Frame frame(stand().place);
    drawParts(own);
}

/// The shared ones first: an entry may destroy the list.
void ModelList::drawParts(const DrawContext& context)
{
    surfaces_->draw(context);
    PartList::draw3d(context);
}

/// Whoever draws its parts, it draws them itself.
OruVisualization::Reach ModelList::reach() const
{
    return Reach::WhenInView;
}

const std::vector<OruVisPickVolume::Cut>& ModelList::cutsThrough(const OruProperties& part)
{
    static const std::vector<OruVisPickVolume::Cut> none;
    for (const OruProperties* node = part.parent(); node; node = node->parent()) {
        if (const auto* const model = dynamic_cast<const ModelList*>(node)) {
            return model->cuts_;
        }
    }
    return none;
}

OruVisHitRecordList ModelList::select3d(const SelectContext& context)
{
    const SectionPlanes* const section = SectionPlanes::beside(*this);
    cuts_ = section ? section->cuts(context) : std::vector<OruVisPickVolume::Cut>();
    if (!stand().placed) {
        return PartList::select3d(context);
    }
    SelectContext own(context.geometry, context.cache, context.resource, context.viewport, context.text,
                      context.format);
    own.modelView = stand().place * context.modelView;
    own.projection = context.projection;
    own.pickPoint = context.pickPoint;
    own.pickSize = context.pickSize;
    return PartList::select3d(own);
}

BoundingBox ModelList::bounds() const
{
    BoundingBox box = PartList::bounds();
    if (stand().placed) {
        box *= stand().place;
    }
    return box;
}

} // namespace hostkit
