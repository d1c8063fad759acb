#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/Matrix.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class OruModified;
class OruPropertiesLayout;
class OruPropertyKind;

/// The values of one node: a text and a unit by key, and what kind of text it is.
///
/// Text is the only form that is stored; the typed overloads write the forms of OruText.h and read them back
/// bit for bit, in every locale. A typed read of a key that is not defined, or whose text does not parse,
/// yields the fallback. Every change is noted at the node, so that watchers see it; writing the text that a
/// key already has is no change.
///
/// What an adaptor binds begins in a slot that it shares with all nodes of the group that bound the same keys
/// with the same defaults. A node gets a slot of its own for a key once that is written to or asked for by
/// slot().
class KELVAR_CORE_API OruPropertiesString
{
public:
    /// What is kept for one key.
    struct Slot
    {
        Slot()
            : revision(1)
            , writes(0)
            , defined(false)
            , cachable(true)
        {}

        QString text;
        QString unit;
        const OruPropertyKind* kind = nullptr; ///< null: nobody has told
        std::uint64_t revision : 46;           ///< grows with each change of text, defined or cachable
        std::uint64_t writes : 16; ///< goes on with each setValue, also of the text that is there,
                                   ///< from when the slot is the node's own
        bool defined : 1;
        bool cachable : 1;
    };

    /// The store of `owner`, which must outlive it.
    explicit OruPropertiesString(OruModified& owner);
    OruPropertiesString(const OruPropertiesString&) = delete;
    OruPropertiesString& operator=(const OruPropertiesString&) = delete;
    ~OruPropertiesString();

    bool defined(const QString& key) const;

    /// The defined keys, sorted.
    QStringList keys() const;

    /// Puts the stored value, or `fallback`, into `value`. Returns the stored text, a null string where the
    /// key is not defined.
    QString getValue(const QString& key, bool& value, bool fallback) const;
    QString getValue(const QString& key, int& value, int fallback) const;
    QString getValue(const QString& key, float& value, float fallback) const;
    QString getValue(const QString& key, double& value, double fallback) const;
    QString getValue(const QString& key, QString& value, const QString& fallback) const;
    QString getValue(const QString& key, QColor& value, const QColor& fallback) const;
    QString getValue(const QString& key, Kelvar::Math::Matrix& value,
                     const Kelvar::Math::Matrix& fallback) const;

    /// Stores a value and defines the key. Returns the text that is stored now.
    QString setValue(const QString& key, bool value);
    QString setValue(const QString& key, int value);
    QString setValue(const QString& key, float value);
    QString setValue(const QString& key, double value);
    QString setValue(const QString& key, const QString& value);
    QString setValue(const QString& key, const QColor& value);

    /// UTF-8; without this overload a literal would be taken for a bool.
    QString setValue(const QString& key, const char* value);

    /// Takes value and unit of `key` away. False: it was not defined.
    bool remove(const QString& key);

    /// The unit of `key`, or `fallback` where it has none.
    QString getUnit(const QString& key, const QString& fallback) const;

    /// Sets the unit of `key`, defined or not; an empty unit clears it.
    void setUnit(const QString& key, const QString& unit);

    /// False makes adaptors of `key` read the store each time, for values that change without a write.
    void setCachable(const QString& key, bool cachable);

    /// What `key` holds; any text where nobody has told. It says nothing about the present value.
    const OruPropertyKind& kind(const QString& key) const;

    /// Tells what `key` holds, in place of what was told before. The kind must outlive the store. No change
    /// for watchers, and the value stays as it is.
    void setKind(const QString& key, const OruPropertyKind& kind);
    void setKind(const QString& key, OruPropertyKind&& kind) = delete;

    /// Takes over all values and units of `other`; keys that `other` does not define are removed. Kinds are
    /// taken over where none was told here.
    void assign(const OruPropertiesString& other);

    /// The node's own slot of `key`, made when missing. It stays at its address as long as the store lives,
    /// defined or not, so that a reader can hold on to it and see a change without looking the key up again.
    /// `kind` is noted where none was told yet; null: it is not known.
    const Slot& slot(const QString& key, const OruPropertyKind* kind = nullptr);

private:
    friend class OruPropertiesLayout;
    friend class OruPropertyAdaptorBase;

    using OwnSlot = std::unique_ptr<Slot>;

    /// The revision of every slot that is shared. A slot is shared before anybody could have seen it changed.
    static constexpr std::uint64_t sharedRevision = 2;

    /// Makes `key` one that this node shares with others, if it is none yet. Its row is then looked up
    /// without the key, as long as the store lives.
    std::size_t bind(const QString& key, const OruPropertyKind* kind);

    /// The first value of a bound key, which other nodes may have begun with, too; or just another one.
    void begin(const QString& key, const QString& text);

    /// The node's own slot in a row; null while that is a shared one.
    const Slot* ownSlot(std::size_t row) const
    {
        return rows_ && row < rows_->size() ? (*rows_)[row].get() : nullptr;
    }
    std::uint64_t revision(std::size_t row) const
    {
        return ownSlot(row) ? ownSlot(row)->revision : sharedRevision;
    }
    bool cachable(std::size_t row) const { return !ownSlot(row) || ownSlot(row)->cachable; }

    template <typename T>
    QString read(const QString& key, T& value, const T& fallback) const;

    const Slot* find(const QString& key) const;
    const Slot& slotIn(const OruPropertiesLayout& row) const;
    OwnSlot& placeOf(std::size_t row);
    Slot& own(const OruPropertiesLayout& row);
    Slot& loose(const QString& key);
    Slot& own(const QString& key);
    template <typename Change>
    void change(const QString& key, Change change);
    bool share(const OruPropertiesLayout& row, const Slot& slot);
    void append(const QString& key, const OruPropertyKind* kind);
    void noteKind(const QString& key, const OruPropertyKind* kind);
    void noteChange(Slot& slot);

    OruModified& owner_;
    /// The bound keys, and the slots of those that have none in rows_.
    boost::intrusive_ptr<OruPropertiesLayout> layout_;
    /// One for each row of the layout, up to the last one with a slot of the node's own; null without any.
    std::unique_ptr<std::vector<OwnSlot>> rows_;
    /// The keys that nobody has bound; null without any.
    std::unique_ptr<std::map<QString, OwnSlot>> loose_;
};
