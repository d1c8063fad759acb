#include "contracts/math/NumberFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using Kelvar::Math::NumberFormat;

TEST(NumberFormat, WritesNumbersForPeople)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const NumberFormat shortest;
    const NumberFormat german(',', '.', 4);
    const NumberFormat grouped('.', '\'', -1);
    const struct
    {
        NumberFormat format;
        double value;
        const char* text;
    } rows[] = {
        {shortest, 0.1, "0.1"},
        {shortest, 100000.0, "100000"},
        {shortest, -2.0 / 3.0, "-0.6666666666666666"},
        {shortest, 123456789012345.0, "123456789012345"},
        {shortest, 1e15, "1e+15"},
        {shortest, 0.00001, "0.00001"},
        {shortest, 1.5e-7, "1.5e-07"},
        {shortest, -0.0, "0"},
        {shortest, std::nan(""), "nan"},
        {shortest, -infinity, "-inf"},
        {german, 3.14159, "3,142"},
        {german, 1.5, "1,5"},
        {german, 12346.0, "12.350"},
        {german, -999.96, "-1.000"},
        {german, 1.23456e20, "1,235e+20"},
        {grouped, 1234567.25, "1'234'567.25"},
        {grouped, -123456.0, "-123'456"},
        {grouped, 123.0, "123"},
        {grouped, 1e20, "1e+20"},
        {NumberFormat(0, 0, 1), 0.36, "0.4"},
        {NumberFormat('.', 0, 0), 0.125, "0.125"},
        {NumberFormat('.', 0, 99), 0.1, "0.1"},
        {NumberFormat('.', 0, 2), std::numeric_limits<double>::denorm_min(), "5e-324"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, row.format.format(row.value));
    }
}
