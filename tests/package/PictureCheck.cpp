// picture_check FILE WIDTHxHEIGHT X,Y=rrggbb ...: ends with 0 if the picture has that size and these
// colors. X and Y count from the upper left corner.

#include <QColor>
#include <QImage>
#include <QStringList>

#include <cstdlib>
#include <iostream>

namespace {

/// What renderers may differ by in each component.
const int tolerance = 12;

bool similar(const QColor& a, const QColor& b)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

/// The probe holds; if not, it is told.
bool holds(const QImage& picture, const QString& probe)
{
    const QStringList parts = QString(probe).replace(QLatin1Char(','), QLatin1Char('=')).split('=');
    const QColor expected(QLatin1Char('#') + parts.value(2));
    const QPoint pixel(parts.value(0).toInt(), parts.value(1).toInt());
    if (expected.isValid() && picture.valid(pixel) && similar(picture.pixelColor(pixel), expected)) {
        return true;
    }
    const QString found = picture.valid(pixel) ? picture.pixelColor(pixel).name() : QStringLiteral("none");
    std::cerr << probe.toStdString() << ": found " << found.toStdString() << std::endl;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const QImage picture(QString::fromLocal8Bit(argv[1]));
    const QString size = QStringLiteral("%1x%2").arg(picture.width()).arg(picture.height());
    bool good = size == QLatin1String(argv[2]);
    if (!good) {
        std::cerr << "the size is " << size.toStdString() << std::endl;
    }
    for (int i = 3; i < argc; ++i) {
        good = holds(picture, QString::fromLocal8Bit(argv[i])) && good;
    }
    return good ? 0 : 1;
}
