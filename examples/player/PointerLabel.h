#pragma once

#include <QtWidgets/QLabel>

class HostPlayer;

/** Tells the time and the level of the audio under the pointer, as long as it is over the waveform. */
class PointerLabel : public QLabel
{
    Q_OBJECT

public:
    explicit PointerLabel(const HostPlayer& player, QWidget* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Show(const QPoint& position);

    const HostPlayer& m_player;
};
