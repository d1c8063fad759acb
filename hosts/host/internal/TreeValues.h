#pragma once

#include "contracts/core/OruProperties.h"

#include <QString>

#include <vector>

namespace hostkit {

/// Values of a property tree for a while: its end puts back, text for text, what set() replaced. The nodes
/// must outlive it.
class TreeValues
{
public:
    TreeValues() = default;
    TreeValues(const TreeValues&) = delete;
    TreeValues& operator=(const TreeValues&) = delete;

    ~TreeValues()
    {
        for (auto former = former_.rbegin(); former != former_.rend(); ++former) {
            former->node->string().setValue(former->key, former->text);
        }
    }

    /// Replaces a value. A key that is not defined stays so.
    template <typename T>
    void set(OruProperties& node, const QString& key, const T& value)
    {
        if (node.string().defined(key)) {
            QString text;
            node.string().getValue(key, text, QString());
            former_.push_back({&node, key, text});
            node.string().setValue(key, value);
        }
    }

private:
    struct Former
    {
        OruProperties* node;
        QString key;
        QString text;
    };

    std::vector<Former> former_;
};

} // namespace hostkit
