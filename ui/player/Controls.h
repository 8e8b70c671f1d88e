#pragma once

class QComboBox;
class QFrame;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QVBoxLayout;

namespace vantoraudio::vantorAudioEngine::UI {

/** The children that the player widget works with. They belong to their parents. These are also their object
 *  names, by which style sheets of host programs address them. */
struct Controls
{
    QVBoxLayout* mainLayout = nullptr;

    QPushButton* btnMute = nullptr;
    QSlider* hSliderVolume = nullptr;
    QPushButton* btnStop = nullptr;
    QPushButton* btnPlayPause = nullptr;
    QPushButton* btnLoop = nullptr;
    QPushButton* btnSettings = nullptr;
    QLineEdit* edCurrentPosition = nullptr;
    QLineEdit* edTotalDuration = nullptr;

    QFrame* frmEditingControls = nullptr;
    QPushButton* btnLoadFile = nullptr;
    QComboBox* cmbboxChannelSelector = nullptr;

    QFrame* frmSelectionStart = nullptr;
    QLineEdit* edSelectionStart = nullptr;
    QPushButton* btnDecSelectionStart = nullptr;
    QPushButton* btnIncSelectionStart = nullptr;

    QFrame* frmSelectionEnd = nullptr;
    QLineEdit* edSelectionEnd = nullptr;
    QPushButton* btnDecSelectionEnd = nullptr;
    QPushButton* btnIncSelectionEnd = nullptr;

    QFrame* frmAudioPlayerHint = nullptr;
    QLabel* lblAudioPlayerHint = nullptr;
};

} // namespace vantoraudio::vantorAudioEngine::UI
