#pragma once

#include <QImage>
#include <QString>

namespace hostkit {

/// A picture that lies on a surface. Never changed once parts use it: hold it by shared pointer to const.
struct Texture
{
    /// What shows beyond the edges of the picture.
    enum class Wrap
    {
        Repeat,
        Mirror,
        Clamp
    };

    /// Where it comes from, for people.
    QString name;

    /// Not null; its first row is the upper edge, which has the texture coordinate 1.
    QImage image;

    Wrap wrapS = Wrap::Repeat;
    Wrap wrapT = Wrap::Repeat;
};

} // namespace hostkit
