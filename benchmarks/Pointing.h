#pragma once

#include "hosts/host/HostScene.h"
#include "benchmarks/Bench.h"

#include <QPoint>
#include <QString>

namespace bench {

/// Fixed pixels, spread over the picture: most on the model, a few beside it.
constexpr int pixelCount = 21;
QPoint pixel(int number);

/// Without telling the scene.
void movePointer(hostkit::HostScene& host, const QPoint& position);

/// What every pick contains.
void clearAndFinish();

/// Hovers over all pixels again and again. `clears` gets what the clear alone took next to it.
void hover(hostkit::HostScene& host, int rounds, Costs& hovers, Costs& clears);

/// The median of `costs` beyond that of `clears`, on the wall and of the calling thread, which does all of a
/// pick's own work.
void reportBeyondClear(const QString& name, const Costs& costs, const Costs& clears, const QString& aim);

void append(Costs& all, const Costs& more);

} // namespace bench
