#pragma once

namespace hostkit {

/// A place on a texture: s to the right, t upwards, the whole picture from 0 to 1.
struct TexturePoint
{
    float s = 0.0f;
    float t = 0.0f;
};

inline bool operator==(const TexturePoint& a, const TexturePoint& b)
{
    return a.s == b.s && a.t == b.t;
}

inline bool operator!=(const TexturePoint& a, const TexturePoint& b)
{
    return !(a == b);
}

} // namespace hostkit
