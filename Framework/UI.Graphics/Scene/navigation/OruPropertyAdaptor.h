#pragma once

#include "contracts/core/OruDefaults.h"
#include "contracts/core/OruModifiedGroup.h"
#include "contracts/core/OruMouse.h"
#include "contracts/core/OruProperties.h"
#include "contracts/core/OruPropertiesString.h"
#include "contracts/core/OruPropertyAdaptorBase.h"
#include "contracts/core/OruPropertyKind.h"
#include "contracts/core/OruText.h"
#include "contracts/math/Matrix.h"

#include <QColor>
#include <QString>

#include <algorithm>
#include <cmath>
#include <memory>
#include <type_traits>

namespace oru {

/// How a value of type T travels between an adaptor and the text store of its node.
///
/// `Stored` is the type that the store is asked for; `fallback()` is what a read yields when the key is gone
/// or its text does not parse. Numbers and flags fall back to zero; enumerations are stored as integers.
template <typename T>
struct PropertyTraits
{
    static_assert(std::is_arithmetic<T>::value || std::is_enum<T>::value, "no property form for this type");
    using Stored = typename std::conditional<std::is_enum<T>::value, int, T>::type;
    static Stored fallback() { return Stored(); }
};

template <>
struct PropertyTraits<QString>
{
    using Stored = QString;
    static QString fallback() { return QString(); }
};

template <>
struct PropertyTraits<QColor>
{
    using Stored = QColor;
    static const QColor& fallback() { return QColor0; }
};

template <>
struct PropertyTraits<Kelvar::Math::Matrix>
{
    using Stored = Kelvar::Math::Matrix;
    static const Kelvar::Math::Matrix& fallback() { return OruMatrix0; }
};

/// The typed copy of a value that an adaptor keeps.
template <typename T>
class PropertyCopy
{
public:
    PropertyCopy()
        : value_(static_cast<T>(PropertyTraits<T>::fallback()))
    {}

    const T& get() const { return value_; }
    void set(const T& value) { value_ = value; }

private:
    T value_;
};

/// A matrix is large and mostly the identity: room for another one is made when it comes.
template <>
class PropertyCopy<Kelvar::Math::Matrix>
{
public:
    using Matrix = Kelvar::Math::Matrix;

    PropertyCopy() = default;
    PropertyCopy(const PropertyCopy& other) { set(other.get()); }
    PropertyCopy& operator=(const PropertyCopy&) = delete;

    const Matrix& get() const { return other_ ? *other_ : OruMatrix0; }
    void set(const Matrix& value)
    {
        if (other_) {
            *other_ = value;
        } else if (!isIdentity(value)) {
            other_ = std::make_unique<Matrix>(value);
        }
    }

private:
    /// Bit by bit: -0 is not 0.
    static bool isIdentity(const Matrix& value)
    {
        const auto same = [](float a, float b) { return a == b && std::signbit(a) == std::signbit(b); };
        return std::equal(value.data(), value.data() + 16, OruMatrix0.data(), same);
    }

    /// Null: the identity.
    std::unique_ptr<Matrix> other_;
};

} // namespace oru

/// A typed member that is bound to one key of one OruProperties node.
///
/// The node's store holds the value as text and is the truth. The adaptor keeps a typed copy that a read
/// serves until the tree says that it may be stale, so a read on every mouse move and every frame parses
/// nothing and allocates nothing. A write updates copy and store together.
///
/// An adaptor is a member of the object that derives from the node, built after the node's base and destroyed
/// before it. It outlives the node only as a copy; then it goes on serving its last value and drops writes.
/// A read changes the cached copy in spite of being const: one thread only.
template <typename T>
class OruPropertyAdaptor : public OruPropertyAdaptorBase
{
public:
    /// Binds to `key` of `owner`. A key that the store does not define yet receives `initial`; a defined key
    /// keeps its text and `initial` is dropped. `unit` enters the store only where no unit stands yet. The
    /// node learns that the key holds a T.
    OruPropertyAdaptor(OruProperties& owner, const QString& key, const T& initial, const QString& unit);

    /// Takes over the source's binding and cached value: the copy reads and writes the source's node.
    OruPropertyAdaptor(const OruPropertyAdaptor& other) = default;

    /// Writes the value of `other`, and its unit if it has one, under this adaptor's own node and key.
    OruPropertyAdaptor& operator=(const OruPropertyAdaptor& other);

    /// The current value. Valid as long as the adaptor; the next read may change it.
    const T& value() const;

    /// Writes `newValue` to the store. Without a node nothing happens and the cached value stays.
    void setValue(const T& newValue);

private:
    using Traits = oru::PropertyTraits<T>;
    using Stored = typename Traits::Stored;

    void fetch() const;
    void store();
    QString text() const;

    static constexpr OruPropertyKind kind_ = OruPropertyKind::of<Stored>();
    mutable oru::PropertyCopy<T> copy_;
};

template <typename T>
OruPropertyAdaptor<T>::OruPropertyAdaptor(OruProperties& owner, const QString& key, const T& initial,
                                          const QString& unit)
    : OruPropertyAdaptorBase(owner, key, &kind_)
{
    OruPropertiesString& values = node()->string();
    if (!values.defined(name())) {
        copy_.set(initial);
        begin(text());
        reset();
    }
    if (values.getUnit(name(), QString()).isEmpty() && !unit.isEmpty()) {
        setUnit(unit);
    }
}

template <typename T>
OruPropertyAdaptor<T>& OruPropertyAdaptor<T>::operator=(const OruPropertyAdaptor& other)
{
    if (this == &other) {
        return *this;
    }
    setValue(other.value());
    const QString unit = other.getUnit();
    if (!unit.isEmpty()) {
        setUnit(unit);
    }
    return *this;
}

template <typename T>
const T& OruPropertyAdaptor<T>::value() const
{
    if (!node().get()) {
        return copy_.get();
    }
    if (!modified() && cachable() && !node()->group.locked()) {
        return copy_.get();
    }
    fetch();
    reset();
    return copy_.get();
}

template <typename T>
void OruPropertyAdaptor<T>::setValue(const T& newValue)
{
    if (!node().get()) {
        return;
    }
    copy_.set(newValue);
    store();
    reset();
}

template <typename T>
void OruPropertyAdaptor<T>::fetch() const
{
    Stored stored = Stored();
    node()->string().getValue(name(), stored, Traits::fallback());
    copy_.set(static_cast<T>(stored));
}

template <typename T>
void OruPropertyAdaptor<T>::store()
{
    // The store keeps text and has no write for matrices, so a matrix goes in as the text that it reads back.
    if constexpr (std::is_same<T, Kelvar::Math::Matrix>::value) {
        node()->string().setValue(name(), text());
    } else {
        node()->string().setValue(name(), static_cast<Stored>(copy_.get()));
    }
}

/// The cached value as the store keeps it.
template <typename T>
QString OruPropertyAdaptor<T>::text() const
{
    if constexpr (std::is_same<T, QString>::value) {
        return copy_.get();
    } else {
        return oru::toString(static_cast<Stored>(copy_.get()));
    }
}
