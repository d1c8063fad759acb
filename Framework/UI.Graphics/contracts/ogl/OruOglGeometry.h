#pragma once

#include "contracts/core/OruProperties.h"
#include "contracts/ogl/OruOglMeshBuffer.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <QString>

#include <cstddef>
#include <memory>

/// The geometry store of one scene: a property node that owns the GL buffers of all meshes made here.
///
/// Constructing it and making meshes needs no GL context; uploading, drawing and destroying it does.
/// Destroying a store that holds no buffers makes no GL call.
class KELVAR_OGL_API OruOglGeometry : public OruProperties
{
public:
    static const QString typeString;

    explicit OruOglGeometry(OruModifiedGroup& group);
    ~OruOglGeometry() override;
    OruOglGeometry(const OruOglGeometry&) = delete;
    OruOglGeometry& operator=(const OruOglGeometry&) = delete;

    /// A new empty mesh. The caller owns it and may keep it beyond the life of the store.
    std::unique_ptr<OruOglMeshBuffer> makeMesh();

    /// Deletes the GL buffers whose meshes are gone; needs the context. Happens by itself at each upload.
    void collect();

    /// GL buffers that exist, those of meshes that are gone but not yet collected included.
    std::size_t bufferCount() const;

private:
    friend class OruOglMeshBuffer;

    std::shared_ptr<OruOglBufferStore> store_;
};
