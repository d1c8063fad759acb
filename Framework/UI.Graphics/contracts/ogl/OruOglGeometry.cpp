#include "contracts/ogl/OruOglGeometry.h"

#include "contracts/core/OruModifiedGroup.h"
#include "contracts/ogl/internal/OruOglBufferStore.h"

const QString OruOglGeometry::typeString = QLatin1String("ogl.geometry");

OruOglGeometry::OruOglGeometry(OruModifiedGroup& sharedGroup)
    : OruProperties(sharedGroup)
    , store_(std::make_shared<OruOglBufferStore>())
{
    setType(typeString);
}

OruOglGeometry::~OruOglGeometry() = default;

std::unique_ptr<OruOglMeshBuffer> OruOglGeometry::makeMesh()
{
    return std::unique_ptr<OruOglMeshBuffer>(new OruOglMeshBuffer(store_));
}

void OruOglGeometry::collect()
{
    store_->collect();
}

std::size_t OruOglGeometry::bufferCount() const
{
    return store_->count();
}
