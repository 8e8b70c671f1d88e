#pragma once

#include <vantorAudioEngine/AudioPlayerActions.h>

#include <QtWidgets/QWidget>

class HostPlayer;
class QSlider;

/** Buttons and a slider that zoom. The slider goes from the whole file to the shortest stretch that the wheel
 *  shows, in steps of equal factors, and follows every other way of zooming. */
class ZoomBar : public QWidget
{
    Q_OBJECT

public:
    using Actions = vantoraudio::vantorAudioEngine::UI::AudioPlayerActions;

    /** Player and actions must live longer. */
    ZoomBar(HostPlayer& player, const Actions& actions, QWidget* parent = nullptr);

    /** For dark windows, or (as at first) for light ones. The actions get them, too. */
    void SetNightIcons(bool night);

    static constexpr int steps = 1000;
    /** Of the view, in seconds, at a step from 0 to `steps` in a file of this length. */
    static double SpanAt(int step, double length);
    /** The nearest step. */
    static int StepFor(double span, double length);

protected:
    /** Leaves the keys that move the slider to it. */
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    double Length() const;
    void FitToFont();
    void ShowView();
    void Zoom(double span);

    HostPlayer& m_player;
    const Actions& m_actions;
    QSlider* m_slider;
};
