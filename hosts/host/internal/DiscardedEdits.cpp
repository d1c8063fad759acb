#include "hosts/host/internal/DiscardedEdits.h"

#include "Scene/render/OruSceneRender.h"
#include "contracts/vis/IOruVisPropertyEdit.h"

#include <boost/make_shared.hpp>

#include <utility>

namespace hostkit {

namespace {

class SessionsOnly final : public IOruVisPropertyEdit
{
public:
    explicit SessionsOnly(boost::shared_ptr<IOruVisPropertyEdit> editor)
        : editor_(std::move(editor))
    {}
    ~SessionsOnly() = default;

    void beginEdit() override { editor_->beginEdit(); }
    void editValue(OruVisList*, OruProperties*, const QString&, const QString&) override {}
    void endEdit() override { editor_->endEdit(); }

private:
    boost::shared_ptr<IOruVisPropertyEdit> editor_;
};

} // namespace

DiscardedEdits::DiscardedEdits(OruSceneRender& render)
    : render_(render)
    , former_(render.editor())
    , installed_(boost::make_shared<SessionsOnly>(former_))
{
    render_.setCustomEditor(installed_);
}

DiscardedEdits::~DiscardedEdits()
{
    if (render_.editor() == installed_) {
        render_.setCustomEditor(former_);
    }
}

} // namespace hostkit
