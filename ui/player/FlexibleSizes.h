#pragma once

#include "ui/player/Controls.h"

#include <QtCore/QList>
#include <QtCore/QObject>

class QBoxLayout;
class QWidget;

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * Lets the controls of a player be as large as its font needs, and breaks their rows where the player is too
 * narrow for them. Belongs to the player, and stays with it.
 */
class FlexibleSizes : public QObject
{
    Q_OBJECT

public:
    FlexibleSizes(QWidget& player, const Controls& controls);

    /** For the width of the player and what the controls show now. */
    void BreakRows();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ReleaseSizes();
    void GatherPosition();
    void FitToFont();
    [[nodiscard]] int NeededWidth() const;

    QWidget& m_player;
    const Controls& m_controls;
    /** In the order in which they are broken. */
    QList<QBoxLayout*> m_rows;
};

} // namespace vantoraudio::vantorAudioEngine::UI
