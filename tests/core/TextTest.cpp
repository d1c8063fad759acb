#include "contracts/core/OruText.h"
#include "tests/core/QtPrint.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <random>

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
struct Reading
{
    const char* text;
    bool parses;
    T value;
};

template <typename T, std::size_t Count>
void checkReadings(const Reading<T> (&rows)[Count], const T& untouched)
{
    for (const Reading<T>& row : rows) {
        SCOPED_TRACE(std::string("'") + row.text + "'");
        T value = untouched;
        EXPECT_EQ(oru::fromString(row.text, value), row.parses);
        EXPECT_EQ(value, row.parses ? row.value : untouched);
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
    EXPECT_EQ(oru::toString(0.1f), QString("0.1"));
    EXPECT_EQ(oru::toString(1234567.5), QString("1234567.5"));
    EXPECT_EQ(oru::toString(-2147483647 - 1), QString("-2147483648"));
    EXPECT_EQ(oru::toString(std::numeric_limits<double>::quiet_NaN()), QString("nan"));
    EXPECT_EQ(oru::toString(-std::numeric_limits<float>::infinity()), QString("-inf"));
    double nan = 0.0;
    EXPECT_TRUE(oru::fromString("nan", nan));
    EXPECT_NE(nan, nan);
}

TEST_F(OruTextTest, ReadsWholeTextsOnly)
{
    const Reading<double> doubles[] = {{" 1.5\t", true, 1.5}, {"1e3", true, 1000.0}, {"1,5", false, 0},
                                       {"1.5x", false, 0},    {"", false, 0},        {"0x10", false, 0},
                                       {"1e999", false, 0},   {"1 2", false, 0},     {"1.5\u0661", false, 0}};
    checkReadings(doubles, 77.0);
    const Reading<int> ints[] = {{"-12", true, -12},
                                 {"1.0", false, 0},
                                 {"2147483648", false, 0},
                                 {"2147483647", true, 2147483647},
                                 {"", false, 0}};
    checkReadings(ints, 77);
    const Reading<bool> flags[] = {{"true", true, true},
                                   {"1", true, true},
                                   {" 0 ", true, false},
                                   {"yes", false, false},
                                   {"", false, false}};
    checkReadings(flags, true);
    const Reading<QColor> colours[] = {{"#80102030", true, QColor(16, 32, 48, 128)},
                                       {"#102030", true, QColor(16, 32, 48)},
                                       {"red", true, QColor(255, 0, 0)},
                                       {"", true, QColor()},
                                       {"#8010203", false, {}},
                                       {"#8010203g", false, {}},
                                       {"rgb ffff 0 0 0 0", false, {}},
                                       {"rgb ffff 0000 0000 0000", false, {}},
                                       {"nothing", false, {}}};
    checkReadings(colours, QColor(1, 2, 3));
    const Matrix shifted = Matrix::translate(Kelvar::Math::Vector3(1.0f, 2.0f, 3.0f));
    const Reading<Matrix> matrices[] = {{"1 0 0 0  0 1 0 0\n0 0 1 0 1 2 3 1", true, shifted},
                                        {"1 0 0 0 0 1 0 0 0 0 1 0 1 2 3", false, {}},
                                        {"1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1 0", false, {}},
                                        {"1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 x", false, {}},
                                        {"", false, {}}};
    checkReadings(matrices, Matrix::OrientXZ);
}

TEST_F(OruTextTest, EveryModelOfColourComesBack)
{
    QColor wide = QColor::fromRgbF(0.1, 0.2, 0.3, 0.4);
    QColor achromatic;
    achromatic.setHsv(-1, 0, 200, 10);
    const QColor colours[] = {QColor(),      QColor(Qt::black), QColor(1, 2, 3, 4),
                              wide,          wide.toHsv(),      wide.toHsl(),
                              wide.toCmyk(), achromatic,        QColor::fromRgbF(2.5, -1.0, 0.00001)};
    for (const QColor& colour : colours) {
        const QString text = oru::toString(colour);
        SCOPED_TRACE(text.toStdString());
        QColor back(9, 9, 9);
        EXPECT_TRUE(oru::fromString(text, back));
        EXPECT_EQ(back, colour);
        EXPECT_EQ(back.spec(), colour.spec());
    }
    EXPECT_EQ(oru::toString(QColor(1, 2, 3, 4)), QString("#04010203"));
}

TEST_F(OruTextTest, MatricesComeBackElementByElement)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> exponent(-40.0f, 38.0f);
    for (int round = 0; round < 500; ++round) {
        Matrix matrix;
        for (int i = 0; i < 16; ++i) {
            matrix.data()[i] = (i % 2 ? 1.0f : -1.0f) * std::pow(10.0f, exponent(random));
        }
        Matrix back;
        ASSERT_TRUE(oru::fromString(oru::toString(matrix), back));
        ASSERT_TRUE(back == matrix) << oru::toString(matrix).toStdString();
    }
}
