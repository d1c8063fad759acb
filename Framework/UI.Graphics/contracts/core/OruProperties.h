#pragma once

#include "contracts/core/OruModified.h"
#include "contracts/core/OruPropertiesString.h"
#include "contracts/core/kelvar_core_api.h"

#include <QString>

#include <cstdint>
#include <memory>

class OruPropertiesChildren;
struct OruPropertiesForeign;

/// A node of the property tree: a name, a type text, ordered children with names of their own, and values.
///
/// A name is unique among siblings and holds no '/'. A path is the names from a node down, joined by '/', the
/// node's own name left out.
///
/// Children come in two kinds. A member child belongs to an object that destroys it itself, mostly as a
/// member of the parent; it leaves the tree in its destructor. A tree-owned child is deleted by its parent.
/// Either way the parent may die first: member children are then just without a parent.
///
/// Every change is noted with touch(). A refused operation returns false and changes nothing.
class KELVAR_CORE_API OruProperties : public OruModified
{
public:
    /// Bit of `flags`: the library that made this node also filled it with default content. It tells a reader
    /// where the defaults of a tree come from; nothing depends on it, and a saved tree keeps it.
    static constexpr std::uint16_t defaultContent = 0x100;

    /// A nameless node without type, values or children.
    explicit OruProperties(OruModifiedGroup& sharedGroup);

    /// Copies name, type, flags, values and units; neither parent nor children.
    OruProperties(const OruProperties& other);

    /// Copies values and units; name, type, flags, place and children of the left side stay.
    OruProperties& operator=(const OruProperties& other);

    /// Leaves the parent through its remove(), then deletes the tree-owned children, last one first.
    virtual ~OruProperties();

    /// Appends `child`. `member` true: its owner destroys it; false: this node takes it over. Refused: null,
    /// this node or one above it, a child that has a parent, a name that a sibling bears; the last one is
    /// told on the error stream.
    virtual bool insert(OruProperties* child, bool member);

    /// Takes `child` out and leaves it to the caller, tree-owned or not. Refused: not a child of this node.
    ///
    /// Runs for a dying child too, which by then is a plain OruProperties that still has its name.
    virtual bool remove(OruProperties* child);

    /// Takes `child` out and deletes it if the tree owned it. Refused: not a child of this node.
    virtual bool erase(OruProperties* child);

    /// Gives the node a new name and tells the parent by onDependentRename(). Refused: an empty name, one
    /// with a
    /// '/', one that a sibling bears. The present name is accepted and changes nothing.
    virtual bool rename(const QString& newName);

    /// A child was renamed; childByName() already knows the new name.
    virtual void onDependentRename(const QString& oldName, const QString& newName);

    /// Puts the text of `key`, or `fallback` where it is not defined, into `value`. Returns the stored text,
    /// null where there is none.
    virtual QString getValue(const QString& key, QString& value, const QString& fallback) const;

    /// Stores a text, whether it is of the kind() of the key or not. Returns the text that is stored now.
    virtual QString setValue(const QString& key, const QString& value);

protected:
    /// Makes a child that a loaded file names, without inserting it; the caller owns it. Null: this node has
    /// no children of that type, as here. It is asked before anything of the file is in the tree.
    virtual OruProperties* makeChild(const QString& childName, const QString& childType);

public:
    const QString& name() const { return name_; }

    const QString& type() const { return type_; }
    void setType(const QString& newType);

    OruPropertiesString& string() { return values_; }
    const OruPropertiesString& string() const { return values_; }

    /// What the property `key` of this node holds; any text where nobody has told.
    const OruPropertyKind& kind(const QString& key) const { return values_.kind(key); }

    /// Number of children, and the child at a position below it. Asking for positions and removing what is in
    /// the middle by turns costs O(n) each time; removing alone, in any order, O(1).
    unsigned int size() const;
    OruProperties* at(unsigned int position) const;

    /// The position of `child`, or -1.
    int index(const OruProperties* child) const;

    /// The child of that name, or null; costs O(1).
    OruProperties* childByName(const QString& childName) const;

    /// The node at a path relative to this one, or null. An empty path is this node.
    OruProperties* find(const QString& relativePath);

    /// The path of this node from the root: root->find(path()) is this node.
    QString path() const;

    /// Its owner destroys it, not the parent: what the last insert() of it was told.
    bool isMember() const { return member_; }

    /// The node that this one is a child of, or null.
    OruProperties* parent() const { return static_cast<OruProperties*>(parentRecord()); }

    /// Free for notes about the node; see defaultContent.
    std::uint16_t flags = 0;

private:
    friend class OruPropertiesChildren;
    friend class OruPropertiesFile;
    friend class OruPropertiesCheck;
    friend class OruPropertiesText;

    bool accepts(const OruProperties* child) const;

    /// As insert() was told.
    bool member_ = false;
    /// Where the parent keeps it.
    std::uint32_t place_ = 0;
    QString name_;
    QString type_;
    OruPropertiesString values_;
    /// Null until the first one comes; most nodes never have any.
    std::unique_ptr<OruPropertiesChildren> children_;
    std::unique_ptr<OruPropertiesForeign> foreign_;
};
