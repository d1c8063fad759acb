#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

class OruProperties;

/// Nodes by name, at most one of each. Not part of the public interface.
///
/// The nodes have the names, so an entry is a hash and a pointer: a third of what QHash takes, and no
/// allocation of its own. A table of 2^n places that is at most three quarters full; who finds its place
/// taken goes to the next free one.
class OruPropertiesNames
{
public:
    /// Null: nobody bears that name.
    OruProperties* find(const QString& name) const;

    /// Its name must be free.
    void insert(OruProperties& node);

    /// Takes out a node that came under `name`; nothing happens where it is not in here.
    void remove(const QString& name, const OruProperties& node);

    void clear();

private:
    static std::uint32_t hashOf(const QString& name);

    std::size_t next(std::size_t place) const { return (place + 1) & (nodes_.size() - 1); }
    std::size_t home(std::uint32_t hash) const { return hash & (nodes_.size() - 1); }
    void put(OruProperties& node, std::uint32_t hash);
    void grow();

    std::size_t count_ = 0;
    /// Two tables, so that nothing is lost to padding; null: a free place.
    std::vector<OruProperties*> nodes_;
    std::vector<std::uint32_t> hashes_;
};
