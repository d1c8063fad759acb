#include "contracts/math/DoubleMatrix.h"

#include <algorithm>
#include <cmath>

namespace Kelvar {
namespace Math {

namespace {

/// The 2 by 2 minors of rows 0, 1 (`upper`) and of rows 2, 3 (`lower`), for the column pairs 01 02 03 12
/// 13 23.
struct Minors
{
    double upper[6];
    double lower[6];

    explicit Minors(const double (&m)[4][4])
    {
        static constexpr int Pairs[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
        for (int i = 0; i < 6; ++i) {
            const int a = Pairs[i][0];
            const int b = Pairs[i][1];
            upper[i] = m[0][a] * m[1][b] - m[0][b] * m[1][a];
            lower[i] = m[2][a] * m[3][b] - m[2][b] * m[3][a];
        }
    }

    /// Laplace's expansion along the upper two rows.
    double determinant() const
    {
        return upper[0] * lower[5] - upper[1] * lower[4] + upper[2] * lower[3] + upper[3] * lower[2] -
               upper[4] * lower[1] + upper[5] * lower[0];
    }
};

} // namespace

DoubleMatrix::DoubleMatrix(const Matrix& source)
{
    std::copy_n(source.data(), 16, &m[0][0]);
}

DoubleMatrix DoubleMatrix::operator*(const DoubleMatrix& next) const
{
    DoubleMatrix product = next;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            product.m[row][column] = m[row][0] * next.m[0][column] + m[row][1] * next.m[1][column] +
                                     m[row][2] * next.m[2][column] + m[row][3] * next.m[3][column];
        }
    }
    return product;
}

double DoubleMatrix::determinant3x3() const
{
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
           m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

std::optional<DoubleMatrix> DoubleMatrix::inverse() const
{
    const Minors minors(m);
    const double determinant = minors.determinant();
    if (!std::isfinite(determinant) || determinant == 0.0) {
        return std::nullopt;
    }
    // Column `row` of the inverse holds the cofactors of that row: each is a sum over the minors of the other
    // pair of rows, with the other row of its own pair.
    DoubleMatrix result = *this;
    for (int row = 0; row < 4; ++row) {
        const double* s = row < 2 ? minors.lower : minors.upper;
        const double* o = m[row ^ 1];
        const double sign = (row % 2 == 0 ? 1.0 : -1.0) / determinant;
        result.m[0][row] = sign * (o[1] * s[5] - o[2] * s[4] + o[3] * s[3]);
        result.m[1][row] = -sign * (o[0] * s[5] - o[2] * s[2] + o[3] * s[1]);
        result.m[2][row] = sign * (o[0] * s[4] - o[1] * s[2] + o[3] * s[0]);
        result.m[3][row] = -sign * (o[0] * s[3] - o[1] * s[1] + o[2] * s[0]);
    }
    return result;
}

void DoubleMatrix::transform(const double point[3], double image[4]) const
{
    for (int column = 0; column < 4; ++column) {
        image[column] =
            point[0] * m[0][column] + point[1] * m[1][column] + point[2] * m[2][column] + m[3][column];
    }
}

Matrix DoubleMatrix::toMatrix() const
{
    Matrix rounded;
    std::transform(&m[0][0], &m[0][0] + 16, rounded.data(),
                   [](double value) { return static_cast<float>(value); });
    return rounded;
}

} // namespace Math
} // namespace Kelvar
