#include "hosts/viewer/window/MessageBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace {

constexpr int iconPixels = 16;

/// More would push the view out of the window.
constexpr int mostLines = 6;

QString shortened(const QString& text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    const auto more = lines.size() - mostLines;
    if (more > 0) {
        lines = lines.mid(0, mostLines);
        lines.append(QStringLiteral("and %1 more").arg(more));
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent)
    , icon_(new QLabel)
    , label_(new QLabel)
{
    label_->setObjectName(QStringLiteral("message"));
    label_->setWordWrap(true);
    label_->setTextFormat(Qt::PlainText);
    label_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* const close = new QToolButton;
    close->setObjectName(QStringLiteral("close message"));
    close->setAutoRaise(true);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setToolTip(tr("Close this message"));
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto* const layout = new QHBoxLayout(this);
    layout->addWidget(icon_);
    layout->addWidget(label_, 1);
    layout->addWidget(close);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    hide();
}

QString MessageBar::text() const
{
    return isHidden() ? QString() : label_->text();
}

void MessageBar::tell(const QString& text, bool error)
{
    const auto sign = error ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
    icon_->setPixmap(style()->standardIcon(sign).pixmap(iconPixels, iconPixels));
    label_->setText(shortened(text));
    show();
}
