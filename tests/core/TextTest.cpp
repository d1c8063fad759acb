#include "contracts/core/OruText.h"
#include "tests/core/QtPrint.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <utility>
#include <vector>

using Kelvar::Math::Matrix;

namespace {

struct CommaPunctuation : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// Decimal commas wherever a conversion might ask: C++ streams, Qt, and C if the machine has such a locale.
struct OruTextTest : testing::Test
{
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));

    OruTextTest()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        std::setlocale(LC_ALL, "de_DE.UTF-8");
    }
    ~OruTextTest() override
    {
        std::locale::global(former);
        QLocale::setDefault(QLocale::c());
        std::setlocale(LC_ALL, "C");
    }
};

template <typename Number, typename Bits>
void expectSameBits(Bits bits)
{
    Number number;
    std::memcpy(&number, &bits, sizeof number);
    if (number != number) {
        return; // the payload of a NaN has no text
    }
    Number back = 0;
    const QString text = oru::toString(number);
    ASSERT_TRUE(oru::fromString(text, back)) << text.toStdString();
    Bits backBits;
    std::memcpy(&backBits, &back, sizeof back);
    ASSERT_EQ(backBits, bits) << text.toStdString();
}

template <typename T>
void checkReadings(const T& untouched, const std::vector<std::pair<const char*, T>>& read,
                   const std::vector<const char*>& refused)
{
    for (const auto& row : read) {
        T value = untouched;
        EXPECT_TRUE(oru::fromString(row.first, value)) << row.first;
        EXPECT_EQ(value, row.second) << row.first;
    }
    for (const char* text : refused) {
        T value = untouched;
        EXPECT_FALSE(oru::fromString(text, value)) << text;
        EXPECT_EQ(value, untouched) << text;
    }
}

} // namespace

TEST_F(OruTextTest, AnyBitsOfFloatsAndDoublesComeBack)
{
    std::mt19937_64 random(4711);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        expectSameBits<double>(bits);
        expectSameBits<float>(static_cast<std::uint32_t>(bits));
    }
    for (const double limit : {0.0, -0.0, std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity()}) {
        std::uint64_t bits;
        std::memcpy(&bits, &limit, sizeof bits);
        expectSameBits<double>(bits);
    }
}

TEST_F(OruTextTest, NumbersAreShortAndWithoutLocale)
{
    EXPECT_EQ(oru::toString(0.1f), QStringLiteral("0.1"));
    EXPECT_EQ(oru::toString(1234567.5), QStringLiteral("1234567.5"));
    EXPECT_EQ(oru::toString(-2147483647 - 1), QStringLiteral("-2147483648"));
    EXPECT_EQ(oru::toString(std::numeric_limits<double>::quiet_NaN()), QStringLiteral("nan"));
    EXPECT_EQ(oru::toString(-std::numeric_limits<float>::infinity()), QStringLiteral("-inf"));
    double nan = 0.0;
    EXPECT_TRUE(oru::fromString("nan", nan));
    EXPECT_NE(nan, nan);
}

TEST_F(OruTextTest, ReadsWholeTextsOnly)
{
    checkReadings<double>(77.0, {{" 1.5\t", 1.5}, {"1e3", 1000.0}},
                          {"1,5", "1.5x", "", "0x10", "1e999", "1 2", "1.5\u0661"});
    checkReadings<int>(77, {{"-12", -12}, {"2147483647", 2147483647}}, {"1.0", "2147483648", ""});
    checkReadings<bool>(true, {{"true", true}, {"1", true}, {" 0 ", false}}, {"yes", ""});
    checkReadings<QColor>(QColor(1, 2, 3),
                          {{"#80102030", QColor(16, 32, 48, 128)},
                           {"#102030", QColor(16, 32, 48)},
                           {"red", QColor(255, 0, 0)},
                           {"", QColor()}},
                          {"#8010203", "#8010203g", "#0x1234ab", "#+1234567", "rgb ffff 0 0 0 0",
                           "rgb ffff 0000 0000 0000", "rgb ffff 0x12 0000 0000 0000", "nothing"});
    const Matrix shifted = Matrix::translate(Kelvar::Math::Vector3(1.0f, 2.0f, 3.0f));
    checkReadings<Matrix>(Matrix::OrientXZ, {{"1 0 0 0  0 1 0 0\n0 0 1 0 1 2 3 1", shifted}},
                          {"1 0 0 0 0 1 0 0 0 0 1 0 1 2 3", "1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1 0",
                           "1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 x", ""});
}

TEST_F(OruTextTest, EveryModelOfColorComesBack)
{
    QColor wide = QColor::fromRgbF(0.1, 0.2, 0.3, 0.4);
    QColor achromatic;
    achromatic.setHsv(-1, 0, 200, 10);
    const QColor colors[] = {QColor(),      QColor(Qt::black), QColor(1, 2, 3, 4),
                             wide,          wide.toHsv(),      wide.toHsl(),
                             wide.toCmyk(), achromatic,        QColor::fromRgbF(2.5, -1.0, 0.00001)};
    for (const QColor& color : colors) {
        const QString text = oru::toString(color);
        SCOPED_TRACE(text.toStdString());
        QColor back(9, 9, 9);
        EXPECT_TRUE(oru::fromString(text, back));
        EXPECT_EQ(back, color);
        EXPECT_EQ(back.spec(), color.spec());
    }
    EXPECT_EQ(oru::toString(QColor(1, 2, 3, 4)), QStringLiteral("#04010203"));
}
