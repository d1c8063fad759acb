#pragma once

#include "contracts/core/OruViewPtr.h"
#include "contracts/vis/OruVisualization.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

/// The transparent objects of one 3D pass, which wait until all that is solid is drawn.
///
/// Belongs to the outermost list of the pass and lives as long as its draw3d(); the contexts of that pass
/// know it, their copies too, and forget it with its end. Objects are borrowed and may die while they wait.
class OruVisDeferred
{
public:
    using Context = OruVisualization::DrawContext;
    /// Whether the list comes to an object in this pass.
    using Reached = std::function<bool(const OruVisualization&)>;

    /// For a list that draws with `context`. Null: it is inside of another list's pass.
    static std::shared_ptr<OruVisDeferred> opened(const Context& context, const Reached& isReached);

    OruVisDeferred(const Context& context, Reached isReached);

    /// See Context::defer().
    bool add(OruVisualization& object, const Context& context);

    /// Draws what was added and is still there. Without anything it makes no OpenGL call.
    void draw();

private:
    struct Entry
    {
        oru::view_ptr<OruVisualization> object;
        /// One of contexts_.
        std::size_t context;
        /// z of its center in the space of the eye: larger is nearer.
        float depth;
        /// It lay below the list. What is drawn by another's hand need not.
        bool reached;
    };

    bool stillThere(const Entry& entry) const;
    std::size_t indexOf(const Context& context);
    void load(std::size_t context);

    Reached isReached_;
    std::vector<Entry> entries_;
    /// The list's own and those that differ in their matrices from the one before.
    std::deque<Context> contexts_;
    /// Whose matrices OpenGL has.
    std::size_t loaded_ = 0;
    bool drawing_ = false;
};
