// The text forms of values: any text is refused, or gives a value whose own text gives that value again.

#include "contracts/core/OruText.h"
#include "fuzz/FuzzCheck.h"

#include <cstdint>

namespace {

template <typename T>
void check(const QString& text, T value, const char* type)
{
    if (!oru::fromString(text, value)) {
        return;
    }
    const QString written = oru::toString(value);
    T again = T();
    kelvarfuzz::require(oru::fromString(written, again), type);
    kelvarfuzz::require(oru::toString(again) == written, type);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    check(text, false, "flag");
    check(text, 0, "whole number");
    check(text, 0.0f, "float");
    check(text, 0.0, "double");
    check(text, QColor(), "color");
    check(text, Kelvar::Math::Matrix(), "matrix");
    return 0;
}
