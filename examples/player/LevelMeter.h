#pragma once

#include "LevelReader.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

class HostPlayer;

/**
 * Shows how loud what is played is: a bar for each channel, its peak in decibels of full scale. A bar rises at
 * once and falls slowly, to nothing while nothing is played. Volume and mute make no difference.
 *
 * Screen readers read the louder channel as its value; no change is announced to them.
 */
class LevelMeter : public QWidget
{
    Q_OBJECT

public:
    /** The player must live longer. */
    explicit LevelMeter(const HostPlayer& player, QWidget* parent = nullptr);

    /** Of each bar, from `lowest` to 0. */
    const QList<double>& Levels() const { return m_levels; }
    double Loudest() const;
    /** In decibels; what is below is silence. */
    static constexpr double lowest = -60.0;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void OnPositionChanged(double seconds);
    void ShowLevels();
    double Position() const;

    const HostPlayer& m_player;
    LevelReader m_reader;
    QList<double> m_levels{lowest};
    double m_reportedPosition = 0.0;
    QElapsedTimer m_sinceReport;
    QElapsedTimer m_sinceFall;
    QTimer m_frames;
};

/** What the meter says of a level. */
QString TextOfLevel(double decibels);
