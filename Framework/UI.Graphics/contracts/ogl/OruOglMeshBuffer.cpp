#include "contracts/ogl/OruOglMeshBuffer.h"

#include "contracts/ogl/OruOglGeometry.h"
#include "contracts/ogl/OruOglGl.h"
#include "contracts/ogl/internal/OruOglBufferStore.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

/// Indices of this many vertices fit into two bytes.
constexpr std::size_t shortIndexVertices = 0x10000;

bool usable(const OruOglMeshArrays& arrays)
{
    if (!arrays.positions || arrays.vertexCount == 0) {
        return false;
    }
    if (!arrays.indices) {
        return true;
    }
    return arrays.indexCount > 0 &&
           *std::max_element(arrays.indices, arrays.indices + arrays.indexCount) < arrays.vertexCount;
}

GLenum modeOf(OruOglMeshArrays::Primitive primitive)
{
    static constexpr GLenum modes[] = {GL_TRIANGLES, GL_LINES, GL_POINTS};
    return modes[static_cast<int>(primitive)];
}

const void* bufferOffset(std::size_t bytes)
{
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(bytes));
}

/// Arrays that a host may have left enabled; a mesh enables those of its own.
constexpr GLenum clientArrays[] = {
    GL_NORMAL_ARRAY, GL_COLOR_ARRAY,     GL_SECONDARY_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY,
    GL_INDEX_ARRAY,  GL_EDGE_FLAG_ARRAY, GL_FOG_COORD_ARRAY,
};

/// The caller's arrays and buffer bindings, put aside for the length of a scope in which none is enabled.
class ClientArrayScope
{
public:
    ClientArrayScope()
    {
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        for (const GLenum array : clientArrays) {
            glDisableClientState(array);
        }
        // Generic attribute 0 would take the place of the positions.
        glDisableVertexAttribArray(0);
    }
    ~ClientArrayScope() { glPopClientAttrib(); }
    ClientArrayScope(const ClientArrayScope&) = delete;
    ClientArrayScope& operator=(const ClientArrayScope&) = delete;
};

/// Binds a buffer and puts the caller's binding back.
class ArrayBufferBinding
{
public:
    explicit ArrayBufferBinding(GLuint name)
    {
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &before_);
        glBindBuffer(GL_ARRAY_BUFFER, name);
    }
    ~ArrayBufferBinding() { glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(before_)); }
    ArrayBufferBinding(const ArrayBufferBinding&) = delete;
    ArrayBufferBinding& operator=(const ArrayBufferBinding&) = delete;

private:
    GLint before_ = 0;
};

/// Makes room in the bound buffer. False without memory; takes GL's complaint off then.
bool reserve(std::size_t bytes)
{
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr, GL_STATIC_DRAW);
    GLint size = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    if (size > 0) {
        return true;
    }
    glGetError();
    return false;
}

void store(std::size_t offset, std::size_t bytes, const void* data)
{
    glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(bytes), data);
}

} // namespace

OruOglMeshBuffer::OruOglMeshBuffer(std::weak_ptr<OruOglBufferStore> store)
    : store_(std::move(store))
{}

OruOglMeshBuffer::~OruOglMeshBuffer()
{
    clear();
}

void OruOglMeshBuffer::clear()
{
    if (const auto store = store_.lock()) {
        store->giveBack(buffer_);
    }
    buffer_ = 0;
    vertexCount_ = 0;
    indexCount_ = 0;
}

bool OruOglMeshBuffer::upload(const OruOglMeshArrays& arrays)
{
    clear();
    const auto store = store_.lock();
    if (!store) {
        return false;
    }
    store->collect();
    if (!usable(arrays)) {
        return false;
    }
    buffer_ = store->make();
    if (!fill(arrays)) {
        clear();
        return false;
    }
    return true;
}

bool OruOglMeshBuffer::fill(const OruOglMeshArrays& arrays)
{
    vertexCount_ = arrays.vertexCount;
    indexed_ = arrays.indices != nullptr;
    indexCount_ = indexed_ ? arrays.indexCount : arrays.vertexCount;
    primitive_ = arrays.primitive;
    normals_ = arrays.normals != nullptr;
    colors_ = arrays.colors != nullptr;
    texturePoints_ = arrays.texturePoints != nullptr;
    shortIndices_ = arrays.vertexCount <= shortIndexVertices;

    const ArrayBufferBinding binding(buffer_);
    if (!reserve(byteCount())) {
        return false;
    }
    ::store(0, vertexCount_ * 12, arrays.positions);
    if (normals_) {
        ::store(normalOffset(), vertexCount_ * 12, arrays.normals);
    }
    if (colors_) {
        ::store(colorOffset(), vertexCount_ * 4, arrays.colors);
    }
    if (texturePoints_) {
        ::store(texturePointOffset(), vertexCount_ * 8, arrays.texturePoints);
    }
    if (!indexed_) {
        return true;
    }
    if (shortIndices_) {
        const std::vector<std::uint16_t> narrow(arrays.indices, arrays.indices + indexCount_);
        ::store(indexOffset(), indexCount_ * 2, narrow.data());
    } else {
        ::store(indexOffset(), indexCount_ * 4, arrays.indices);
    }
    return true;
}

bool OruOglMeshBuffer::replaceColors(std::size_t first, std::size_t count, const std::uint8_t* colors)
{
    if (empty() || !colors_ || first > vertexCount_ || count > vertexCount_ - first) {
        return false;
    }
    const ArrayBufferBinding binding(buffer_);
    ::store(colorOffset() + first * 4, count * 4, colors);
    return true;
}

void OruOglMeshBuffer::draw() const
{
    draw(0, indexCount_);
}

void OruOglMeshBuffer::draw(std::size_t first, std::size_t count) const
{
    if (empty() || first >= indexCount_) {
        return;
    }
    const ClientArrayScope arrays;
    enableArrays();
    drawRange({first, std::min(count, indexCount_ - first)});
}

void OruOglMeshBuffer::draw(const std::vector<Range>& ranges) const
{
    if (empty() || ranges.empty()) {
        return;
    }
    const ClientArrayScope arrays;
    enableArrays();
    drawRanges(ranges);
}

/// Within a ClientArrayScope.
void OruOglMeshBuffer::enableArrays() const
{
    glBindBuffer(GL_ARRAY_BUFFER, buffer_);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer_);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    if (normals_) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, 0, bufferOffset(normalOffset()));
    }
    if (colors_) {
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, bufferOffset(colorOffset()));
    }
    if (texturePoints_) {
        glClientActiveTexture(GL_TEXTURE0);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 0, bufferOffset(texturePointOffset()));
    }
}

unsigned int OruOglMeshBuffer::indexType() const
{
    return shortIndices_ ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
}

void OruOglMeshBuffer::drawRange(const Range& range) const
{
    const GLenum mode = modeOf(primitive_);
    const auto count = static_cast<GLsizei>(range.count);
    if (indexed_) {
        glDrawElements(mode, count, indexType(), bufferOffset(indexOffset() + range.first * indexSize()));
    } else {
        glDrawArrays(mode, static_cast<GLint>(range.first), count);
    }
}

void OruOglMeshBuffer::drawRanges(const std::vector<Range>& ranges) const
{
    std::vector<GLsizei> counts;
    std::vector<GLint> firsts;
    std::vector<const void*> offsets;
    counts.reserve(ranges.size());
    (indexed_ ? offsets.reserve(ranges.size()) : firsts.reserve(ranges.size()));
    for (const Range& range : ranges) {
        const std::size_t first = std::min(range.first, indexCount_);
        counts.push_back(static_cast<GLsizei>(std::min(range.count, indexCount_ - first)));
        if (indexed_) {
            offsets.push_back(bufferOffset(indexOffset() + first * indexSize()));
        } else {
            firsts.push_back(static_cast<GLint>(first));
        }
    }
    const auto drawCount = static_cast<GLsizei>(ranges.size());
    if (indexed_) {
        glMultiDrawElements(modeOf(primitive_), counts.data(), indexType(), offsets.data(), drawCount);
    } else {
        glMultiDrawArrays(modeOf(primitive_), firsts.data(), counts.data(), drawCount);
    }
}

bool OruOglMeshBuffer::empty() const
{
    return indexCount_ == 0 || store_.expired();
}

bool OruOglMeshBuffer::belongsTo(const OruOglGeometry& geometry) const
{
    // By owner, which takes no lock: this is asked at each draw.
    return !store_.owner_before(geometry.store_) && !geometry.store_.owner_before(store_);
}

std::size_t OruOglMeshBuffer::byteCount() const
{
    return empty() ? 0 : indexOffset() + indexCount_ * indexSize();
}
