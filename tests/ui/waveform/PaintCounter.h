#pragma once

#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtWidgets/QWidget>

namespace vantoraudio::vantorAudioEngine::UI {

/** Counts how often a widget is painted. */
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
    int m_paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        m_paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace vantoraudio::vantorAudioEngine::UI
