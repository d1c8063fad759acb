#include "benchmarks/BareProgram.h"

#include "contracts/ogl/OruOglGl.h"

#include <limits>
#include <variant>

namespace bench {

namespace {

const void* offset(std::size_t bytes)
{
    return reinterpret_cast<const void*>(bytes);
}

template <typename Index>
void fillIndices(const std::vector<uint32_t>& indices)
{
    const std::vector<Index> converted(indices.begin(), indices.end());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(converted.size() * sizeof(Index)),
                 converted.data(), GL_STATIC_DRAW);
}

/// In the order of Primitive.
constexpr GLenum modes[] = {GL_TRIANGLES, GL_LINES, GL_POINTS};

/// As parts have them by default.
constexpr float pointSize = 3.0f;
constexpr float lineWidth = 2.0f;

} // namespace

BareProgram::~BareProgram()
{
    for (const Object& object : objects_) {
        glDeleteBuffers(1, &object.vertices);
        glDeleteBuffers(1, &object.indices);
    }
}

void BareProgram::add(const Part& part)
{
    Object object{0,
                  0,
                  part.positions.size(),
                  static_cast<int>(part.indices.size()),
                  GL_UNSIGNED_INT,
                  part.color,
                  !part.normals.empty(),
                  !part.colors.empty(),
                  part.closed,
                  modes[static_cast<int>(part.primitive)]};
    const std::size_t block = object.vertexCount * sizeof(Kelvar::Math::Vector3);
    const std::size_t normalBlock = object.lit ? block : 0;
    const std::size_t colorBlock = part.colors.size() * sizeof(uint32_t);
    glGenBuffers(1, &object.vertices);
    glBindBuffer(GL_ARRAY_BUFFER, object.vertices);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(block + normalBlock + colorBlock), nullptr,
                 GL_STATIC_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(block), part.positions.data());
    glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(block), static_cast<GLsizeiptr>(normalBlock),
                    part.normals.data());
    glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(block + normalBlock),
                    static_cast<GLsizeiptr>(colorBlock), part.colors.data());

    glGenBuffers(1, &object.indices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, object.indices);
    if (object.vertexCount <= std::numeric_limits<uint16_t>::max()) {
        object.indexType = GL_UNSIGNED_SHORT;
        fillIndices<uint16_t>(part.indices);
    } else {
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(part.indices.size() * sizeof(uint32_t)),
                     part.indices.data(), GL_STATIC_DRAW);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    objects_.push_back(object);
}

void BareProgram::add(const hostkit::Model& model)
{
    model.visitParts([this](const hostkit::ModelPart& part) {
        std::visit([this](const auto& shape) { add(*shape); }, part.content);
    });
}

void BareProgram::add(const hostkit::Mesh& mesh)
{
    add({mesh.material.color, mesh.positions, mesh.normals, mesh.colors, mesh.indices, mesh.closed});
}

void BareProgram::add(const hostkit::LineSet& lines)
{
    add({lines.material.color, lines.positions, lines.normals, lines.colors, lines.indices, false,
         hostkit::Primitive::Lines});
}

void BareProgram::add(const hostkit::PointSet& points)
{
    add({points.material.color,
         points.positions,
         points.normals,
         points.colors,
         {},
         false,
         hostkit::Primitive::Points});
}

void BareProgram::draw(const Kelvar::Math::Matrix& modelView, const Kelvar::Math::Matrix& projection,
                       const QSize& pixels) const
{
    glPushAttrib(OruOglAllAttribBits);
    glViewport(0, 0, pixels.width(), pixels.height());
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection.data());
    glMatrixMode(GL_MODELVIEW);
    setState();
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glLoadMatrixf(modelView.data());
    glEnableClientState(GL_VERTEX_ARRAY);
    for (const Object& object : objects_) {
        drawObject(object);
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glPopAttrib();
    glFinish();
}

void BareProgram::setState()
{
    // Ahead of its switch, which overwrites what is tracked.
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    for (const GLenum capability : {GL_DEPTH_TEST, GL_NORMALIZE, GL_CULL_FACE, GL_COLOR_MATERIAL,
                                    GL_POLYGON_OFFSET_FILL, GL_LIGHTING, GL_LIGHT0}) {
        glEnable(capability);
    }
    glDepthFunc(GL_LESS);
    glPointSize(pointSize);
    glLineWidth(lineWidth);
    glShadeModel(GL_SMOOTH);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glPolygonOffset(0.0f, 1.0f);
    const float everywhere[] = {0.2f, 0.2f, 0.2f, 1.0f};
    const float black[] = {0.0f, 0.0f, 0.0f, 1.0f};
    const float white[] = {1.0f, 1.0f, 1.0f, 1.0f};
    const float direction[] = {0.25f, 0.4f, 1.0f, 0.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, everywhere);
    glLightfv(GL_LIGHT0, GL_AMBIENT, black);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
    glLightfv(GL_LIGHT0, GL_SPECULAR, white);
    // The direction goes through the model view matrix of this moment.
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_POSITION, direction);
}

void BareProgram::drawObject(const Object& object)
{
    (object.closed ? glEnable : glDisable)(GL_CULL_FACE);
    (object.lit ? glEnable : glDisable)(GL_LIGHTING);
    glColor4ub(static_cast<GLubyte>(object.color.red()), static_cast<GLubyte>(object.color.green()),
               static_cast<GLubyte>(object.color.blue()), static_cast<GLubyte>(object.color.alpha()));
    glBindBuffer(GL_ARRAY_BUFFER, object.vertices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, object.indices);
    const std::size_t block = object.vertexCount * sizeof(Kelvar::Math::Vector3);
    glVertexPointer(3, GL_FLOAT, 0, offset(0));
    glNormalPointer(GL_FLOAT, 0, offset(block));
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, offset(object.lit ? 2 * block : block));
    (object.lit ? glEnableClientState : glDisableClientState)(GL_NORMAL_ARRAY);
    (object.colored ? glEnableClientState : glDisableClientState)(GL_COLOR_ARRAY);
    if (object.indexCount > 0) {
        glDrawElements(object.mode, object.indexCount, object.indexType, offset(0));
    } else {
        glDrawArrays(object.mode, 0, static_cast<GLsizei>(object.vertexCount));
    }
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
}

} // namespace bench
