#include "hosts/viewer/window/LoadingBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace {

constexpr int barWidth = 160;
constexpr int wholePercent = 100;

} // namespace

LoadingBar::LoadingBar(QWidget* parent)
    : QWidget(parent)
    , what_(new QLabel)
    , bar_(new QProgressBar)
{
    bar_->setRange(0, wholePercent);
    bar_->setFixedWidth(barWidth);
    auto* const stop = new QPushButton(tr("Stop"));
    stop->setObjectName(QStringLiteral("stop loading"));
    connect(stop, &QPushButton::clicked, this, &LoadingBar::stopped);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(what_);
    layout->addWidget(bar_);
    layout->addWidget(stop);
    hide();
}

void LoadingBar::tell(const QString& what, double share)
{
    what_->setText(tr("Loading %1").arg(what));
    bar_->setValue(qRound(share * wholePercent));
    show();
}
