#pragma once

#include "contracts/math/Matrix.h"
#include "hosts/mesh/Model.h"
#include "hosts/mesh/Primitive.h"

#include <QSize>

#include <vector>

namespace bench {

/// What a program would do that knows OpenGL and has no library: vertex buffers filled once, a light, and one
/// draw call an object, in order. Lights and state are those that a scene sets for its 3D pass, so that
/// the pictures are the same.
class BareProgram
{
public:
    BareProgram() = default;
    ~BareProgram();
    BareProgram(const BareProgram&) = delete;
    BareProgram& operator=(const BareProgram&) = delete;

    struct Part
    {
        QColor color;
        const std::vector<Kelvar::Math::Vector3>& positions;
        const std::vector<Kelvar::Math::Vector3>& normals; ///< for each position, or none: not lit then
        const std::vector<uint32_t>& colors;               ///< for each position, or none
        const std::vector<uint32_t>& indices;              ///< none: all vertices in order
        bool closed;
        hostkit::Primitive primitive = hostkit::Primitive::Triangles;
    };

    /// Copies the arrays into buffers. The context is current, here and in all operations.
    void add(const Part& part);
    void add(const hostkit::Model& model);

    /// Clears the frame, draws all and waits until it is done.
    void draw(const Kelvar::Math::Matrix& modelView, const Kelvar::Math::Matrix& projection,
              const QSize& pixels) const;

private:
    struct Object
    {
        unsigned int vertices, indices;
        std::size_t vertexCount;
        int indexCount;
        unsigned int indexType;
        QColor color;
        bool lit, colored, closed;
        unsigned int mode;
    };

    void add(const hostkit::Mesh& mesh);
    void add(const hostkit::LineSet& lines);
    void add(const hostkit::PointSet& points);

    static void setState();
    static void drawObject(const Object& object);

    std::vector<Object> objects_;
};

} // namespace bench
