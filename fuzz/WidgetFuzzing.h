#pragma once

#include "fuzz/Fuzzing.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QLoggingCategory>
#include <QtGui/QColor>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtMultimedia/QAudioFormat>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <memory>

/** What the fuzzers of the widgets share: an application without a screen, and events. */
namespace Fuzzing {

/** Kept to the end of the process, which is no orderly one. */
inline void EnsureApplication()
{
    static const QApplication* const application = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
        QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
        static int count = 1;
        static std::array<char, 5> name{"fuzz"};
        static std::array<char*, 2> arguments{name.data(), nullptr};
        return new QApplication(count, arguments.data());
    }();
    static_cast<void>(application);
}

inline QAudioFormat AnyFormat(Input& input)
{
    constexpr std::array rates{44100, 8000, 48000, 1, 0, -1, 2147483647};
    QAudioFormat format;
    format.setSampleRate(input.PickValueInArray(rates));
    format.setChannelCount(input.ConsumeIntegralInRange(0, 3));
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}

inline QColor AnyColor(Input& input)
{
    return input.ConsumeBool() ? QColor() : QColor::fromRgba(input.ConsumeIntegral<std::uint32_t>());
}

/** Also flags that do not exist yet, so that this need not know the last one. */
inline vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget::Interactions AnyInteractions(Input& input)
{
    return vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget::Interactions::fromInt(
        input.ConsumeIntegral<std::uint8_t>());
}

inline void SendMouse(Input& input, QWidget& widget)
{
    constexpr std::array types{QEvent::MouseButtonPress, QEvent::MouseMove, QEvent::MouseButtonRelease,
                               QEvent::MouseButtonDblClick};
    constexpr std::array buttons{Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::NoButton};
    constexpr std::array modifiers{Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier};
    const QPointF position(input.ConsumeIntegralInRange(-20, widget.width() + 20),
                           input.ConsumeIntegralInRange(-20, widget.height() + 20));
    const Qt::MouseButton button = input.PickValueInArray(buttons);
    QMouseEvent event(input.PickValueInArray(types), position, widget.mapToGlobal(position), button, button,
                      input.PickValueInArray(modifiers));
    QApplication::sendEvent(&widget, &event);
}

inline void SendWheel(Input& input, QWidget& widget)
{
    constexpr std::array modifiers{Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier, Qt::AltModifier};
    const QPointF position(input.ConsumeIntegralInRange(0, widget.width()), 5);
    const QPoint angle(input.ConsumeIntegral<std::int16_t>(),
                       input.ConsumeBool() ? 120 : input.ConsumeIntegral<int>());
    QWheelEvent event(position, widget.mapToGlobal(position), QPoint(), angle, Qt::NoButton,
                      input.PickValueInArray(modifiers), Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

inline void SendKey(Input& input, QWidget& widget)
{
    constexpr std::array keys{Qt::Key_Space, Qt::Key_Return, Qt::Key_A,    Qt::Key_9,   Qt::Key_0,
                              Qt::Key_Left,  Qt::Key_Right,  Qt::Key_Home, Qt::Key_End, Qt::Key_Backspace};
    const Qt::Key key = input.PickValueInArray(keys);
    const QString text = key == Qt::Key_9 || key == Qt::Key_0 ? QString(QChar(char16_t(key))) : QString();
    const auto modifiers = input.ConsumeBool() ? Qt::ControlModifier : Qt::NoModifier;
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&widget, &press);
}

} // namespace Fuzzing
