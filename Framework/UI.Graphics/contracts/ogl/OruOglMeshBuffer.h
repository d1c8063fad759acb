#pragma once

#include "contracts/ogl/OruOglMeshArrays.h"
#include "contracts/ogl/kelvar_ogl_api.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class OruOglBufferStore;
class OruOglGeometry;

/// One mesh in a vertex buffer object, made by OruOglGeometry::makeMesh(). It keeps no copy of the arrays.
///
/// The GL buffer belongs to the geometry store. When the mesh goes it is released at the store's next
/// opportunity, so a mesh may be destroyed without a current context; when the store goes first, the mesh is
/// empty from then on and draws nothing.
class KELVAR_OGL_API OruOglMeshBuffer
{
public:
    ~OruOglMeshBuffer();
    OruOglMeshBuffer(const OruOglMeshBuffer&) = delete;
    OruOglMeshBuffer& operator=(const OruOglMeshBuffer&) = delete;

    /// Copies the arrays into a GL buffer in place of what was there; needs the context. Indices take 2 bytes
    /// where the vertex count allows. False, and the mesh is empty: no positions, no vertices or indices, an
    /// index out of range, a store that is gone, or no memory on the GL side.
    bool upload(const OruOglMeshArrays& arrays);

    /// Releases the GL buffer; the mesh is empty.
    void clear();

    /// Draws the whole mesh in the current state and matrices, or `count` indices from the index `first` on;
    /// what lies beyond the end is left out. A mesh without colors takes the current color; one with
    /// colors leaves the current color undefined, one with texture points the current texture coordinates of
    /// unit 0. Client array state and buffer bindings of the caller are
    /// neither used nor changed.
    void draw() const;
    void draw(std::size_t first, std::size_t count) const;

    /// Indices, or vertices of a mesh without indices.
    struct Range
    {
        std::size_t first;
        std::size_t count;
    };
    /// Draws several ranges in their order, in one call. Of each, what lies beyond the end is left out.
    void draw(const std::vector<Range>& ranges) const;

    /// Gives other colors to `count` vertices from `first` on, four bytes each; needs the context. False, and
    /// nothing has changed: an empty mesh, one without colors, or vertices beyond the end.
    bool replaceColors(std::size_t first, std::size_t count, const std::uint8_t* colors);

    /// True without anything to draw: never uploaded, cleared, refused, or the store is gone.
    bool empty() const;

    /// True if this mesh was made by `geometry` and that one lives.
    bool belongsTo(const OruOglGeometry& geometry) const;

    std::size_t vertexCount() const { return vertexCount_; }
    /// Without indices the number of vertices.
    std::size_t indexCount() const { return indexCount_; }

    /// Bytes in the GL buffer.
    std::size_t byteCount() const;

private:
    friend class OruOglGeometry;
    explicit OruOglMeshBuffer(std::weak_ptr<OruOglBufferStore> store);

    bool fill(const OruOglMeshArrays& arrays);
    void enableArrays() const;
    void drawRange(const Range& range) const;
    void drawRanges(const std::vector<Range>& ranges) const;
    unsigned int indexType() const;
    std::size_t indexSize() const { return !indexed_ ? 0 : shortIndices_ ? 2 : 4; }
    std::size_t normalOffset() const { return vertexCount_ * 12; }
    std::size_t colorOffset() const { return vertexCount_ * (normals_ ? 24 : 12); }
    std::size_t texturePointOffset() const { return colorOffset() + (colors_ ? vertexCount_ * 4 : 0); }
    std::size_t indexOffset() const { return texturePointOffset() + (texturePoints_ ? vertexCount_ * 8 : 0); }

    std::weak_ptr<OruOglBufferStore> store_;
    std::size_t vertexCount_ = 0;
    std::size_t indexCount_ = 0;
    unsigned int buffer_ = 0; // positions, normals, colors, texture points, indices, one after the other
    OruOglMeshArrays::Primitive primitive_ = OruOglMeshArrays::Primitive::Triangles;
    bool indexed_ = false;
    bool normals_ = false;
    bool colors_ = false;
    bool texturePoints_ = false;
    bool shortIndices_ = false;
};
