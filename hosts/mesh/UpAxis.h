#pragma once

#include "contracts/core/OruPropertyKind.h"
#include "contracts/math/Matrix.h"
#include "contracts/math/Vector3.h"

#include <QString>

#include <cstddef>
#include <iterator>
#include <optional>

namespace hostkit {

/// The axis of a model's own frame that points up. In a scene, Z does.
class UpAxis
{
public:
    enum Direction
    {
        X,
        MinusX,
        Y,
        MinusY,
        Z,
        MinusZ
    };

    constexpr UpAxis(Direction direction = Z)
        : direction_(direction)
    {}

    /// The axis of a name such as "-x"; nothing for any other text.
    static std::optional<UpAxis> named(const QString& name)
    {
        for (std::size_t i = 0; i < std::size(names); ++i) {
            if (name == QLatin1String(names[i].value)) {
                return UpAxis(static_cast<Direction>(i));
            }
        }
        return std::nullopt;
    }

    /// "x", "-x" and so on.
    QString name() const { return QLatin1String(names[direction_].value); }

    Direction direction() const { return direction_; }

    /// Turns a model so that this axis of it comes to lie along Z; quarter turns, which are exact.
    Kelvar::Math::Matrix toZ() const
    {
        const Turn& turn = turns[direction_];
        return Kelvar::Math::Matrix::rotate(turn.axis, turn.degrees);
    }

private:
    struct Turn
    {
        Kelvar::Math::Vector3 axis;
        float degrees;
    };

    /// Both in the order of Direction.
    static constexpr OruPropertyKind::Choice names[] = {{"x", "X"},   {"-x", "-X"}, {"y", "Y"},
                                                        {"-y", "-Y"}, {"z", "Z"},   {"-z", "-Z"}};
    static constexpr Turn turns[] = {{Kelvar::Math::VectorY, -90.0f}, {Kelvar::Math::VectorY, 90.0f},
                                     {Kelvar::Math::VectorX, 90.0f},  {Kelvar::Math::VectorX, -90.0f},
                                     {Kelvar::Math::VectorZ, 0.0f},   {Kelvar::Math::VectorX, 180.0f}};

    Direction direction_;

public:
    /// What a property holds whose texts are the names.
    static constexpr OruPropertyKind kind = OruPropertyKind::of<QString>().oneOf(names);
};

inline bool operator==(UpAxis a, UpAxis b)
{
    return a.direction() == b.direction();
}

inline bool operator!=(UpAxis a, UpAxis b)
{
    return !(a == b);
}

} // namespace hostkit
