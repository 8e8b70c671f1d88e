#include "LevelMeter.h"

#include "HostPlayer.h"
#include "Level.h"

#include <QtCore/QLocale>
#include <QtGui/QPainter>
#include <QtWidgets/QAccessibleWidget>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace {

constexpr double DecibelsPerSecond = 40.0;
constexpr double LongestReport = 0.5;

/** As a progress bar, for which screen readers have a word. */
class LevelAccessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit LevelAccessible(LevelMeter* meter)
        : QAccessibleWidget(meter, QAccessible::ProgressBar), m_meter(*meter)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text type) const override
    {
        return type == QAccessible::Value ? TextOfLevel(m_meter.Loudest()) : QAccessibleWidget::text(type);
    }

    QVariant currentValue() const override { return m_meter.Loudest(); }
    QVariant minimumValue() const override { return LevelMeter::lowest; }
    QVariant maximumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override { return 0.0; }
    void setCurrentValue(const QVariant&) override {}

private:
    const LevelMeter& m_meter;
};

QAccessibleInterface* CreateAccessible(const QString&, QObject* object)
{
    auto* meter = qobject_cast<LevelMeter*>(object);
    return meter ? new LevelAccessible(meter) : nullptr;
}

} // namespace

QString TextOfLevel(double decibels)
{
    return decibels > LevelMeter::lowest ? LevelMeter::tr("%1 dB").arg(QLocale().toString(decibels, 'f', 0))
                                         : LevelMeter::tr("silent");
}

LevelMeter::LevelMeter(const HostPlayer& player, QWidget* parent) : QWidget(parent), m_player(player)
{
    QAccessible::installFactory(&CreateAccessible);
    setAccessibleName(tr("Level"));
    setToolTip(tr("Level of what is played, in decibels of full scale"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&player, &HostPlayer::AudioPositionChanged, this, &LevelMeter::OnPositionChanged);
    m_frames.callOnTimeout(this, &LevelMeter::ShowLevels);
    m_frames.setInterval(33ms);
}

double LevelMeter::Loudest() const
{
    return *std::max_element(m_levels.cbegin(), m_levels.cend());
}

QSize LevelMeter::sizeHint() const
{
    return {2 * minimumSizeHint().width(), minimumSizeHint().height()};
}

QSize LevelMeter::minimumSizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(TextOfLevel(lowest + 1.0));
    return {2 * text, fontMetrics().height()};
}

void LevelMeter::OnPositionChanged(double seconds)
{
    m_reportedPosition = seconds;
    m_sinceReport.start();
    if (m_player.IsPlaying() && !m_frames.isActive()) {
        m_sinceFall.start();
        m_frames.start();
    }
}

void LevelMeter::ShowLevels()
{
    const QList<double> peaks =
        m_player.IsPlaying() ? m_reader.PeaksBefore(Position(), m_player) : QList<double>();
    if (!peaks.isEmpty()) {
        m_levels.resize(peaks.size(), lowest);
    }
    const double fall = DecibelsPerSecond * double(m_sinceFall.restart()) / 1000.0;
    for (qsizetype i = 0; i < m_levels.size(); ++i) {
        const double level = std::min(DecibelsOf(peaks.value(i)), 0.0);
        m_levels[i] = std::max({level, m_levels[i] - fall, lowest});
    }
    if (!m_player.IsPlaying() && !(Loudest() > lowest)) {
        m_frames.stop();
        m_reader.Close();
    }
    update();
}

/** Between two reports it moves on; a player that reports no longer has stalled. */
double LevelMeter::Position() const
{
    const double elapsed = double(m_sinceReport.elapsed()) / 1000.0 * m_player.GetPlaybackRate();
    return m_reportedPosition + std::min(elapsed, LongestReport);
}

void LevelMeter::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const int textWidth = fontMetrics().horizontalAdvance(TextOfLevel(lowest + 1.0) + u' ');
    painter.drawText(rect(), Qt::AlignRight | Qt::AlignVCenter,
                     Loudest() > lowest ? TextOfLevel(Loudest()) : QString());

    const double height = double(rect().height()) / double(m_levels.size());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    QRectF bar(0.5, 0.5, std::max(1, width() - textWidth - 1), height - 2.0);
    for (const double level : m_levels) {
        painter.fillRect(bar, palette().color(QPalette::Base));
        QRectF filled = bar;
        filled.setWidth(bar.width() * (1.0 - level / lowest));
        painter.fillRect(filled, palette().color(QPalette::Highlight));
        painter.drawRect(bar);
        bar.translate(0.0, height);
    }
}
