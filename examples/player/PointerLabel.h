#pragma once

#include <QtWidgets/QLabel>

#include <optional>

class HostPlayer;

/** Tells the time and the level of the audio under the pointer, as long as it is over the waveform. */
class PointerLabel : public QLabel
{
    Q_OBJECT

public:
    explicit PointerLabel(const HostPlayer& player, QWidget* parent = nullptr);

    /** What shows has changed under the pointer: to be called when there are other samples. The label notices
     *  another visible range by itself. */
    void Refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QString TextAt(const QPoint& position) const;

    const HostPlayer& m_player;
    /** On the player; none beside the waveform. */
    std::optional<QPoint> m_pointer;
};
