#pragma once

#include "contracts/core/OruProperties.h"
#include "contracts/core/OruViewPtr.h"

#include <QListWidgetItem>

#include <cstdint>

namespace hostkit {

/// A view in the list of a ViewsPanel.
class ViewItem : public QListWidgetItem
{
public:
    explicit ViewItem(OruProperties& node)
        : node_(node)
    {
        setFlags(flags() | Qt::ItemIsEditable);
        catchUp();
    }

    /// Null once the view is gone.
    OruProperties* node() const { return node_.get(); }

    /// The name as of the last catchUp(); the text may be one that is being typed.
    const QString& name() const { return name_; }

    /// Takes the name over; a view that changed needs another picture. Its node lives.
    void catchUp()
    {
        if (revision_ != node_->revision()) {
            revision_ = node_->revision();
            name_ = node_->name();
            setText(name_);
            pictureDue = true;
        }
    }

    /// The picture is to be made, or made again.
    bool pictureDue = true;

private:
    oru::view_ptr<OruProperties> node_;
    QString name_;
    std::uint64_t revision_ = 0;
};

} // namespace hostkit
