#include "App/HUDPanel.h"

#include "App/HUDIcons.h"

#include <QPainter>
#include <QTimerEvent>

#include <cmath>

namespace vesk {

namespace {

// Dark with a light hairline: the one is seen on light desktops, the other on dark ones.
constexpr QColor Pill(0x1c, 0x1c, 0x20, 0xee);
constexpr QColor Hairline(0xff, 0xff, 0xff, 0x58);
constexpr QColor SolidPill(0x1c, 0x1c, 0x20);
constexpr QColor SolidHairline(0x6a, 0x6a, 0x70);
constexpr QColor Text(0xf5, 0xf5, 0xf7);
constexpr QColor Bar(0xff, 0x7a, 0x6b);

constexpr qreal CornerRadius = HUDLayout::Height / 2.;
constexpr int SpokeCount = 8;
constexpr int SpinnerPeriod = 100; // ms from spoke to spoke

QFont labelFont(const QFont &system)
{
    QFont font(system);
    font.setPixelSize(13); // the pill does not grow with the text
    font.setWeight(QFont::Medium);
    return font;
}

QPainterPath pillPath(const QRectF &rect, qreal inset)
{
    QPainterPath path;
    const qreal radius = CornerRadius - inset;
    path.addRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    return path;
}

} // namespace

HUDPanel::HUDPanel()
    // Window managers leave a window alone that goes past them: no frame, no focus, no list, all desktops.
    : QWidget(nullptr,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus
                  | Qt::WindowTransparentForInput | Qt::X11BypassWindowManagerHint)
    , m_bars([this] { update(); })
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11NetWmWindowTypeNotification); // for what compositors do to windows
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    setWindowTitle(QStringLiteral("Vesk"));
    setFont(labelFont(font()));
    resize(120, HUDLayout::Height);
}

void HUDPanel::showBars(bool isLocked, bool isCommand)
{
    const bool wereSeen = m_showsBars && isVisible();
    m_layout = HUDLayout::listening(isLocked, isCommand);
    m_showsBars = true;
    m_spinner.stop();
    m_bars.clear();
    if (wereSeen) {
        m_bars.moveTo(m_layout.barsLeft);
    } else {
        m_bars.place(m_layout.barsLeft);
    }
    QStringList words{QStringLiteral("Listening")};
    if (isLocked) {
        words.append(QStringLiteral("Hands-free"));
    }
    if (isCommand) {
        words.append(QStringLiteral("Command"));
    }
    setAccessibleName(words.join(QStringLiteral(", ")));
    update();
}

void HUDPanel::showMessage(const QString &text, bool isSpinning)
{
    m_text = text.simplified(); // one line, whatever a server's sentence holds
    const QFontMetricsF metrics(font());
    m_layout = HUDLayout::message(metrics.horizontalAdvance(m_text), metrics.height(), isSpinning);
    m_showsBars = false;
    m_bars.stop();
    if (!isSpinning) {
        m_spinner.stop();
    } else if (!m_spinner.isActive()) {
        m_spinnerStep = 0;
        m_spinner.start(SpinnerPeriod, this);
    }
    setAccessibleName(m_text);
    update();
}

void HUDPanel::setLevel(float level)
{
    m_bars.append(level);
    if (m_showsBars && isVisible()) {
        m_bars.follow();
    }
}

void HUDPanel::setComposited(bool isComposited)
{
    m_isComposited = isComposited;
    cutOut();
}

void HUDPanel::cutOut()
{
    if (m_isComposited) {
        clearMask();
        return;
    }
    QRegion pill; // row by row: a region made of the path has corners
    for (int y = 0; y < height(); ++y) {
        const qreal fromMiddle = y + 0.5 - height() / 2.;
        const auto inset = CornerRadius - std::sqrt(CornerRadius * CornerRadius - fromMiddle * fromMiddle);
        const int left = static_cast<int>(std::lround(inset));
        pill += QRect(left, y, width() - 2 * left, 1);
    }
    setMask(pill);
}

void HUDPanel::resizeEvent(QResizeEvent *) { cutOut(); }

void HUDPanel::hideEvent(QHideEvent *)
{
    m_spinner.stop();
    m_bars.stop();
}

void HUDPanel::timerEvent(QTimerEvent *event)
{
    if (!isVisible()) {
        m_spinner.stop(); // no screen had the pointer when it was to be shown
    } else if (event->timerId() == m_spinner.timerId()) {
        m_spinnerStep = (m_spinnerStep + 1) % SpokeCount;
        update(m_layout.spinner.toAlignedRect());
    }
}

void HUDPanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_isComposited) {
        painter.fillPath(pillPath(QRectF(rect()), 0), Pill);
    } else {
        painter.fillRect(rect(), SolidPill); // the mask has whole pixels where the path has shades
    }
    painter.setPen(QPen(m_isComposited ? Hairline : SolidHairline, 1));
    painter.drawPath(pillPath(QRectF(rect()), 0.5));
    painter.setPen(Qt::NoPen);
    if (m_showsBars) {
        drawBars(painter);
        drawIcons(painter);
    } else {
        drawMessage(painter);
    }
}

void HUDPanel::drawBars(QPainter &painter) const
{
    painter.setBrush(Bar);
    for (const QRectF &bar : m_bars.frames()) {
        painter.drawRoundedRect(bar, 1.5, 1.5);
    }
}

void HUDPanel::drawIcons(QPainter &painter) const
{
    if (!m_layout.lock.isNull()) {
        painter.fillPath(HUDIcons::lock().translated(m_layout.lock.topLeft()), Text);
    }
    if (!m_layout.command.isNull()) {
        painter.fillPath(HUDIcons::wand().translated(m_layout.command.topLeft()), Text);
    }
}

void HUDPanel::drawMessage(QPainter &painter) const
{
    if (!m_layout.spinner.isNull()) {
        drawSpinner(painter);
    }
    const QFontMetricsF metrics(font());
    painter.setPen(Text);
    // In the middle of what the label has beyond its text.
    painter.drawText(m_layout.label, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
                     metrics.elidedText(m_text, Qt::ElideRight, m_layout.label.width()));
}

void HUDPanel::drawSpinner(QPainter &painter) const
{
    painter.save();
    painter.translate(m_layout.spinner.center());
    for (int i = 0; i < SpokeCount; ++i) {
        const int age = (m_spinnerStep - i + SpokeCount) % SpokeCount;
        painter.setOpacity(1 - 0.8 * age / (SpokeCount - 1));
        painter.fillPath(QTransform().rotate(360. * i / SpokeCount).map(HUDIcons::spoke()), Text);
    }
    painter.restore();
}

} // namespace vesk
