#include "ui/waveform/WaveformAccessible.h"

#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/TimeScale.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QPointer>
#include <QtWidgets/QAccessibleWidget>

#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

/** A slider that only tells: its value is the position in seconds, from 0 to the length. No change is announced:
 *  while a file plays, nobody wants to hear each position. */
class WaveformAccessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit WaveformAccessible(BGFXWaveformWidget* view)
        : QAccessibleWidget(view, QAccessible::Slider), m_diagram(view->findChild<BGFXWaveformDiagramWidget*>())
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        return state;
    }

    [[nodiscard]] QString text(QAccessible::Text type) const override
    {
        if (type == QAccessible::Value) {
            return BGFXWaveformWidget::tr("%1 of %2").arg(FormatToTime(Position()), FormatToTime(Length()));
        }
        if (type != QAccessible::Description) {
            return QAccessibleWidget::text(type);
        }
        const QString own = QAccessibleWidget::text(type);
        return own.isEmpty() ? Selection() : own + u' ' + Selection();
    }

    [[nodiscard]] QVariant currentValue() const override { return Position(); }
    [[nodiscard]] QVariant minimumValue() const override { return 0.0; }
    [[nodiscard]] QVariant maximumValue() const override { return Length(); }
    [[nodiscard]] QVariant minimumStepSize() const override { return 0.0; }
    void setCurrentValue(const QVariant&) override {}

private:
    [[nodiscard]] double Length() const
    {
        return m_diagram ? ClampTime(m_diagram->GetTotalLength(), 0.0, Longest) : 0.0;
    }
    [[nodiscard]] double Position() const
    {
        return m_diagram ? ClampTime(m_diagram->GetAudioPosition(), 0.0, Length()) : 0.0;
    }
    [[nodiscard]] QString Selection() const
    {
        if (!m_diagram || !m_diagram->HasSelection()) {
            return BGFXWaveformWidget::tr("Nothing is selected.");
        }
        return BGFXWaveformWidget::tr("Selected from %1 to %2.")
            .arg(FormatToTime(m_diagram->GetSelectionStartTime()), FormatToTime(m_diagram->GetSelectionEndTime()));
    }

    static constexpr double Longest = std::numeric_limits<double>::max();

    QPointer<BGFXWaveformDiagramWidget> m_diagram;
};

QAccessibleInterface* Create(const QString& className, QObject* object)
{
    auto* view = qobject_cast<BGFXWaveformWidget*>(object);
    const bool isView = className == QLatin1StringView(BGFXWaveformWidget::staticMetaObject.className());
    return view != nullptr && isView ? new WaveformAccessible(view) : nullptr;
}

} // namespace

void InstallWaveformAccessible()
{
    // Each time: Qt forgets it with every application object, and does not install it twice.
    QAccessible::installFactory(&Create);
    // Its destructor runs when the library is unloaded, and ahead of that of Qt's list, which is older.
    static const struct Removal
    {
        Removal() = default;
        ~Removal() { QAccessible::removeFactory(&Create); }
        Q_DISABLE_COPY_MOVE(Removal)
    } removal;
}

} // namespace vantoraudio::vantorAudioEngine::UI
