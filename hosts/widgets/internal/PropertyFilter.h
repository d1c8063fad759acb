#pragma once

#include <QString>

#include <cstdint>
#include <unordered_map>

class OruProperties;

namespace hostkit {

/// Which nodes and properties a person looks for.
class PropertyFilter
{
public:
    /// Without words it takes everything.
    explicit PropertyFilter(const QString& words = QString())
        : words_(words)
    {}

    const QString& words() const { return words_; }
    bool active() const { return !words_.isEmpty(); }

    /// Whether a text holds the words, whatever the case.
    bool takes(const QString& text) const { return text.contains(words_, Qt::CaseInsensitive); }

    /// Whether a property of a node is one of them, or the node or anything below it.
    bool takes(const OruProperties& node, const QString& key) const;
    bool reaches(const OruProperties& node);

private:
    /// What was found at a node, as of a revision of all below it.
    struct Answer
    {
        std::uint64_t revision = 0;
        bool reached = false;
    };

    bool search(const OruProperties& node);

    QString words_;
    std::unordered_map<const OruProperties*, Answer> answers_;
};

} // namespace hostkit
