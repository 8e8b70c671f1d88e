#pragma once

#include "SignalRecorder.h"
#include "ui/waveform/BGFXWaveformDiagramWidget.h"

#include <QtGui/QMouseEvent>
#include <QtTest/QtTest>

#include <utility>

/** A diagram to try mouse and keys on. */
namespace vantoraudio::vantorAudioEngine::UI::testing {

inline void Press(QWidget& widget, int x, int y = 50)
{
    QTest::mousePress(&widget, Qt::LeftButton, {}, {x, y});
}

inline void Release(QWidget& widget, int x, int y = 50)
{
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, {x, y});
}

inline void Move(QWidget& widget, int x, int y = 50)
{
    QTest::mouseMove(&widget, {x, y});
}

inline void SendMouse(QWidget& widget, QEvent::Type type, const QPointF& position, Qt::MouseButtons buttons)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, widget.mapToGlobal(position), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/** QTest would move the real pointer for a move without a button. */
inline void Hover(QWidget& widget, int x)
{
    SendMouse(widget, QEvent::MouseMove, QPointF(x, 50.0), Qt::NoButton);
}

/** 100 seconds at 1000 Hz on 1000 pixels, in edit mode: the middle of pixel x is at x ÷ 10 + 0.05 seconds. */
struct Bench
{
    explicit Bench(double duration = 100.0)
    {
        diagram.resize(1000, 100);
        QAudioFormat format;
        format.setSampleRate(1000);
        diagram.SetAudioFormat(format);
        diagram.SetDuration(duration);
        diagram.SetEditMode(true);
        recorder.Take();
    }

    void SelectAndHover(double start, double end, int x)
    {
        diagram.SetSelectedSnippet({start, end});
        Hover(diagram, x);
        recorder.Take();
    }

    [[nodiscard]] std::pair<double, double> Selection() const
    {
        return {diagram.GetSelectionStartTime(), diagram.GetSelectionEndTime()};
    }

    BGFXWaveformDiagramWidget diagram;
    SignalRecorder recorder{diagram};
};

} // namespace vantoraudio::vantorAudioEngine::UI::testing
