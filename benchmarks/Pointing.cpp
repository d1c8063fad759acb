#include "benchmarks/Pointing.h"

#include "contracts/ogl/OruOglGl.h"

namespace bench {

QPoint pixel(int number)
{
    return {frameWidth * (number % 7 + 1) / 8 + 3, frameHeight * (number / 7 + 1) / 4 + number};
}

void movePointer(hostkit::HostScene& host, const QPoint& position)
{
    host.context().mouse.move(position, Kelvar::UI::Toolkit::ModifierNone);
}

void clearAndFinish()
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glFinish();
}

void hover(hostkit::HostScene& host, int rounds, Costs& hovers, Costs& clears)
{
    for (int number = 0; number < pixelCount; ++number) {
        const auto costs = interleave(rounds, {clearAndFinish, [&] {
                                                   movePointer(host, pixel(number));
                                                   host.send(&OruSceneEventHandler::mouseMove);
                                               }});
        append(clears, costs[0]);
        append(hovers, costs[1]);
    }
}

void reportBeyondClear(const QString& name, const Costs& costs, const Costs& clears, const QString& aim)
{
    const auto beyond = [&](double Cost::*part) { return median(costs, part) - median(clears, part); };
    const QString unit = QStringLiteral("ms");
    report(name + QStringLiteral(", beyond the clear, wall"), beyond(&Cost::wall), unit, aim);
    report(name + QStringLiteral(", beyond the clear, calling thread"), beyond(&Cost::caller), unit, aim);
}

void append(Costs& all, const Costs& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

} // namespace bench
