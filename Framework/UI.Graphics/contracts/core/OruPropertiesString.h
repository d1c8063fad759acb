#pragma once

#include "contracts/core/kelvar_core_api.h"
#include "contracts/math/Matrix.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>

class OruModified;
class OruPropertyKind;

/// The values of one node: a text and a unit by key, and what kind of text it is.
///
/// Text is the only form that is stored; the typed overloads write the forms of OruText.h and read them back
/// bit for bit, in every locale. A typed read of a key that is not defined, or whose text does not parse,
/// yields the fallback. Every change is noted at the node, so that watchers see it; writing the text that a
/// key already has is no change.
class KELVAR_CORE_API OruPropertiesString
{
public:
    /// What is kept for one key. It stays at its address as long as the store lives, defined or not, so that
    /// a reader can hold on to it and see a change without looking the key up again.
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
        std::uint64_t writes : 16;             ///< goes on with each setValue, also of the text that is there
        bool defined : 1;
        bool cachable : 1;
    };

    /// The store of `owner`, which must outlive it.
    explicit OruPropertiesString(OruModified& owner);
    OruPropertiesString(const OruPropertiesString&) = delete;
    OruPropertiesString& operator=(const OruPropertiesString&) = delete;

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
    void setKind(const QString& key, const OruPropertyKind& kind) { slots_[key].kind = &kind; }
    void setKind(const QString& key, OruPropertyKind&& kind) = delete;

    /// Takes over all values and units of `other`; keys that `other` does not define are removed. Kinds are
    /// taken over where none was told here.
    void assign(const OruPropertiesString& other);

    /// The slot of `key`, made when missing. `kind` is noted where none was told yet; null: it is not known.
    const Slot& slot(const QString& key, const OruPropertyKind* kind = nullptr);

private:
    template <typename T>
    QString read(const QString& key, T& value, const T& fallback) const;

    const Slot* find(const QString& key) const;
    void noteChange(Slot& slot);

    OruModified& owner_;
    std::map<QString, Slot> slots_;
};
