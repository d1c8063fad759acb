#pragma once

#include <boost/shared_ptr.hpp>

class IOruVisPropertyEdit;
class OruSceneRender;

namespace hostkit {

/// While it lives, a gesture of a scene changes no property: what it would edit stays as it is. Edit sessions
/// begin and end for the scene's editor as ever. An editor that is installed meanwhile stays.
class DiscardedEdits
{
public:
    /// `render` is borrowed and has to live as long.
    explicit DiscardedEdits(OruSceneRender& render);
    ~DiscardedEdits();
    DiscardedEdits(const DiscardedEdits&) = delete;
    DiscardedEdits& operator=(const DiscardedEdits&) = delete;

private:
    OruSceneRender& render_;
    boost::shared_ptr<IOruVisPropertyEdit> former_;
    boost::shared_ptr<IOruVisPropertyEdit> installed_;
};

} // namespace hostkit
