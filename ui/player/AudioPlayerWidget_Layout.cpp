#include "ui/player/Background.h"
#include "ui/player/Controls.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QSignalBlocker>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

QIcon LoadIcon(QLatin1StringView name)
{
    return QIcon(u":/Resources/vantoraudio"_s + name + u"_day.svg"_s);
}

template<typename Layout>
Layout* CreateLayout(const char* name, const QMargins& margins)
{
    auto* layout = new Layout;
    layout->setObjectName(QLatin1StringView(name));
    layout->setContentsMargins(margins);
    return layout;
}

template<typename Layout>
Layout* CreateLayoutOn(QWidget* parent, const char* name, const QMargins& margins)
{
    auto* layout = CreateLayout<Layout>(name, margins);
    parent->setLayout(layout);
    return layout;
}

QFrame* CreateFrame(QWidget* parent, const char* name, QFrame::Shape shape = QFrame::NoFrame)
{
    auto* frame = new QFrame(parent);
    frame->setObjectName(QLatin1StringView(name));
    frame->setFrameShape(shape);
    frame->setFrameShadow(QFrame::Plain);
    return frame;
}

QFrame* CreateLine(QWidget* parent, const char* name)
{
    return CreateFrame(parent, name, QFrame::HLine);
}

QPushButton* CreateButton(QWidget* parent, const char* name, const QSize& size, const QIcon& icon)
{
    auto* button = new QPushButton(parent);
    button->setObjectName(QLatin1StringView(name));
    button->setFixedSize(size);
    button->setIcon(icon);
    return button;
}

QPushButton* CreateStepButton(QWidget* parent, const char* name, const QIcon& icon, const QString& toolTip)
{
    QPushButton* button = CreateButton(parent, name, {20, 22}, icon);
    button->setAutoRepeat(true);
    button->setToolTip(toolTip);
    return button;
}

QLabel* CreateLabel(QWidget* parent, const char* name, const QString& text)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1StringView(name));
    return label;
}

QLabel* CreateHeading(QWidget* parent, const char* name, const QString& text)
{
    QLabel* label = CreateLabel(parent, name, text);
    label->setFixedSize(386, 23);
    label->setIndent(6);
    return label;
}

void AddSpacer(QBoxLayout* layout, int width, int height, QSizePolicy::Policy horizontal)
{
    layout->addItem(new QSpacerItem(width, height, horizontal, QSizePolicy::Minimum));
}

} // namespace

void AudioPlayerWidget::SetupUi()
{
    m_writableDirectoryPath.clear();
    m_originalAudioFilePath.clear();
    m_audioPlayer = new AudioPlayer(this);
    m_hasSelection = false;
    m_busy = false;
    LoadIcons();
    // The point before the milliseconds stands for any character, so that a comma may be written as well.
    m_timeValidator = std::make_unique<QRegularExpressionValidator>(
        QRegularExpression(uR"((2[0-3]|[01][0-9]):[0-5][0-9]:[0-5][0-9].\d{3})"_s));
    m_controls->mainLayout = CreateLayoutOn<QVBoxLayout>(this, "mainLayout", {0, 0, 0, 6});
    m_controls->mainLayout->setSpacing(0);
    SetupWaveform();
    SetupAudioPlayerControls();
    SetupSelectionsControls();
    SetupHintSection();
    SetupAccessibleNames();
    SetHint(QString());
    SetEditMode(false);
    EnableAudioControls(false);
}

void AudioPlayerWidget::LoadIcons()
{
    m_loadIcon = LoadIcon("LoadAudio"_L1);
    m_playIcon = LoadIcon("PlayerPlay"_L1);
    m_pauseIcon = LoadIcon("PlayerPause"_L1);
    m_stopIcon = LoadIcon("PlayerStop"_L1);
    m_loopIcon = LoadIcon("PlayerLoop"_L1);
    // Not one of ours: what the settings button stands for is the program's, which brings the picture along.
    m_settingsIcon = LoadIcon("Preferences"_L1);
    m_muteIcon = LoadIcon("Mute"_L1);
    m_unmuteIcon = LoadIcon("Unmute"_L1);
}

void AudioPlayerWidget::SetupWaveform()
{
    QFrame* frame = CreateFrame(this, "frmWaveForm");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "waveFormHBoxLayout", {0, 0, 0, 6});
    layout->setSpacing(6);
    m_waveformWidget = new BGFXWaveformWidget(frame);
    layout->addWidget(m_waveformWidget);
    m_controls->mainLayout->addWidget(frame);
}

void AudioPlayerWidget::SetupAudioPlayerControls()
{
    QFrame* frame = CreateFrame(this, "frmAudioControls");
    frame->setMaximumSize(QWIDGETSIZE_MAX, 30);
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "audioControlsHLayout", {30, 0, 20, 0});
    layout->addLayout(SetupVolumeControls(frame));
    AddSpacer(layout, 0, 20, QSizePolicy::Expanding);
    layout->addLayout(SetupTransportControls(frame));
    AddSpacer(layout, 0, 20, QSizePolicy::Expanding);

    QLabel* currentPosition = CreateLabel(frame, "lblCurrentPos", tr("Current position:"));
    currentPosition->setFixedHeight(20);
    layout->addWidget(currentPosition);
    m_controls->edCurrentPosition = CreateTimeField(frame, "edCurrentPosition", {80, 20}, u"00:00:00,000"_s);
    layout->addWidget(m_controls->edCurrentPosition);
    AddSpacer(layout, 10, 16, QSizePolicy::Preferred);
    QLabel* total = CreateLabel(frame, "lblHeaderTotal", tr("Total:"));
    total->setFixedHeight(20);
    layout->addWidget(total);
    m_controls->edTotalDuration = CreateTotalField(frame);
    layout->addWidget(m_controls->edTotalDuration);
    m_controls->mainLayout->addWidget(frame);
}

QLayout* AudioPlayerWidget::SetupVolumeControls(QWidget* parent)
{
    auto* layout = CreateLayout<QHBoxLayout>("volumeControlsHLayout", {});
    m_controls->btnMute = CreateButton(parent, "btnMute", {28, 20}, m_unmuteIcon);
    m_controls->btnMute->setCheckable(true);
    layout->addWidget(m_controls->btnMute);

    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName("hSliderVolume"_L1);
    slider->setFixedSize(80, 20);
    {
        // The default range ends at 99, where the full volume of a new player so is shown: hosts count on it.
        const QSignalBlocker blocker(slider);
        slider->setValue(m_audioPlayer->Volume());
    }
    layout->addWidget(slider);
    m_controls->hSliderVolume = slider;
    return layout;
}

QLayout* AudioPlayerWidget::SetupTransportControls(QWidget* parent)
{
    // The name lacks a letter; style sheets of host programs know it so.
    auto* layout = CreateLayout<QHBoxLayout>("playerContolsHLayout", {});
    m_controls->btnStop = CreateButton(parent, "btnStop", {28, 22}, m_stopIcon);
    m_controls->btnPlayPause = CreateButton(parent, "btnPlayPause", {28, 22}, m_playIcon);
    m_controls->btnPlayPause->setCheckable(true);
    m_controls->btnLoop = CreateButton(parent, "btnLoop", {28, 22}, m_loopIcon);
    m_controls->btnLoop->setCheckable(true);
    m_controls->btnSettings = CreateButton(parent, "btnSettings", {28, 22}, m_settingsIcon);
    layout->addWidget(m_controls->btnStop);
    layout->addWidget(m_controls->btnPlayPause);
    layout->addWidget(m_controls->btnLoop);
    layout->addWidget(m_controls->btnSettings);
    return layout;
}

QLineEdit* AudioPlayerWidget::CreateTimeField(QWidget* parent, const char* name, const QSize& size,
                                              const QString& text)
{
    auto* field = new QLineEdit(parent);
    const QSignalBlocker blocker(field);
    field->setObjectName(QLatin1StringView(name));
    field->setFixedSize(size);
    field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    field->setInputMask(u"99:99:99.999"_s);
    field->setText(text);
    field->setValidator(m_timeValidator.get());
    return field;
}

QLineEdit* AudioPlayerWidget::CreateTotalField(QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setObjectName("edTotalDuration"_L1);
    field->setFixedSize(80, 20);
    field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    field->setReadOnly(true);
    field->setText(u"00:00:00,000"_s);
    return field;
}

void AudioPlayerWidget::SetupSelectionsControls()
{
    QFrame* frame = CreateFrame(this, "frmEditingControls");
    frame->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "editingControlshLayout", {30, 0, 20, 0});
    layout->addLayout(SetupLoadAndChannelControls(frame));
    layout->addLayout(SetupSelectionControls(frame));
    m_controls->frmEditingControls = frame;
    m_controls->mainLayout->addWidget(frame);
}

QLayout* AudioPlayerWidget::SetupLoadAndChannelControls(QWidget* parent)
{
    auto* column = CreateLayout<QVBoxLayout>("controlsLeftVLayout", {0, 0, 6, 0});
    column->addWidget(CreateHeading(parent, "lblAudio", tr("Audio file")));
    column->addWidget(CreateLine(parent, "hLineLeftTop"));

    auto* row = CreateLayout<QHBoxLayout>("controlsLeftHLayout", {6, 2, 6, 2});
    m_controls->btnLoadFile = new QPushButton(m_loadIcon, tr("Load audio file"), parent);
    m_controls->btnLoadFile->setObjectName("btnLoadFile"_L1);
    row->addWidget(m_controls->btnLoadFile);
    AddSpacer(row, 10, 20, QSizePolicy::Fixed);
    row->addWidget(CreateLabel(parent, "lblChannel", tr("Use channel")));
    m_controls->cmbboxChannelSelector = new QComboBox(parent);
    m_controls->cmbboxChannelSelector->setObjectName("cmbboxChannelSelector"_L1);
    m_controls->cmbboxChannelSelector->setFixedSize(158, 23);
    row->addWidget(m_controls->cmbboxChannelSelector);
    AddSpacer(row, 40, 20, QSizePolicy::Expanding);
    column->addLayout(row);

    column->addWidget(CreateLine(parent, "hLineLeftBottom"));
    return column;
}

QLayout* AudioPlayerWidget::SetupSelectionControls(QWidget* parent)
{
    auto* column = CreateLayout<QVBoxLayout>("controlsRightVLayout", {6, 0, 0, 0});
    column->addWidget(CreateHeading(parent, "lblSelection", tr("Selection")));
    column->addWidget(CreateLine(parent, "hLineRightTop"));

    auto* row = CreateLayout<QHBoxLayout>("controlsRightHLayout", {6, 2, 6, 2});
    row->addWidget(CreateLabel(parent, "lblStart", tr("Start:")));
    row->addWidget(SetupSelectionStart(parent));
    row->addWidget(CreateLabel(parent, "lblEnd", tr("End:")));
    row->addWidget(SetupSelectionEnd(parent));
    AddSpacer(row, 20, 20, QSizePolicy::Expanding);
    column->addLayout(row);

    column->addWidget(CreateLine(parent, "hLineRightBottom"));
    return column;
}

QFrame* AudioPlayerWidget::SetupSelectionStart(QWidget* parent)
{
    QFrame* frame = CreateFrame(parent, "frmSelectionStart");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "selectionStartHLayout", {});
    // A point here, where the other fields start with a comma.
    m_controls->edSelectionStart = CreateTimeField(frame, "edSelectionStart", {106, 22}, u"00:00:00.000"_s);
    m_controls->btnDecSelectionStart = CreateStepButton(frame, "btnDecSelectionStart", LoadIcon("DigitalMinus"_L1),
                                                        tr("Use CTRL / CMD for coarse decrements"));
    m_controls->btnIncSelectionStart = CreateStepButton(frame, "btnIncSelectionStart", LoadIcon("DigitalPlus"_L1),
                                                        tr("Use CTRL / CMD for coarse increments"));
    layout->addWidget(m_controls->edSelectionStart);
    layout->addWidget(m_controls->btnDecSelectionStart);
    layout->addWidget(m_controls->btnIncSelectionStart);
    AddSpacer(layout, 20, 20, QSizePolicy::Expanding);
    m_controls->frmSelectionStart = frame;
    return frame;
}

QFrame* AudioPlayerWidget::SetupSelectionEnd(QWidget* parent)
{
    QFrame* frame = CreateFrame(parent, "frmSelectionEnd");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "selectionEndHLayout", {});
    m_controls->edSelectionEnd = CreateTimeField(frame, "edSelectionEnd", {106, 22}, u"00:00:00.000"_s);
    m_controls->btnDecSelectionEnd = CreateStepButton(frame, "btnDecSelectionEnd", LoadIcon("DigitalMinus"_L1),
                                                      tr("Use CTRL / CMD for coarse decrements"));
    m_controls->btnIncSelectionEnd = CreateStepButton(frame, "btnIncSelectionEnd", LoadIcon("DigitalPlus"_L1),
                                                      tr("Use CTRL / CMD for coarse increments"));
    layout->addWidget(m_controls->edSelectionEnd);
    layout->addWidget(m_controls->btnDecSelectionEnd);
    layout->addWidget(m_controls->btnIncSelectionEnd);
    AddSpacer(layout, 20, 20, QSizePolicy::Expanding);
    m_controls->frmSelectionEnd = frame;
    return frame;
}

void AudioPlayerWidget::SetupHintSection()
{
    QFrame* frame = CreateFrame(this, "frmAudioPlayerHint");
    frame->setFixedHeight(26);
    auto* layout = CreateLayoutOn<QVBoxLayout>(frame, "audioPlayerhintVLayout", {30, 0, 20, 0});
    m_controls->lblAudioPlayerHint = CreateLabel(frame, "lblAudioPlayerHint", QString());
    m_controls->lblAudioPlayerHint->setFixedHeight(22);
    m_controls->lblAudioPlayerHint->setIndent(6);
    layout->addWidget(m_controls->lblAudioPlayerHint);
    layout->addWidget(CreateLine(frame, "hLineHintBottom"));
    m_controls->frmAudioPlayerHint = frame;
    m_controls->mainLayout->addWidget(frame);
}

/** Most controls bear a picture only: what screen readers call them. */
void AudioPlayerWidget::SetupAccessibleNames()
{
    m_waveformWidget->setAccessibleName(tr("Waveform"));
    m_controls->btnMute->setAccessibleName(tr("Mute"));
    m_controls->hSliderVolume->setAccessibleName(tr("Volume"));
    m_controls->btnStop->setAccessibleName(tr("Stop"));
    m_controls->btnPlayPause->setAccessibleName(tr("Play"));
    m_controls->btnLoop->setAccessibleName(tr("Loop"));
    m_controls->btnSettings->setAccessibleName(tr("Settings"));
    m_controls->edCurrentPosition->setAccessibleName(tr("Current position"));
    m_controls->edTotalDuration->setAccessibleName(tr("Total duration"));
    m_controls->cmbboxChannelSelector->setAccessibleName(tr("Channel"));
    m_controls->edSelectionStart->setAccessibleName(tr("Start of the selection"));
    m_controls->btnDecSelectionStart->setAccessibleName(tr("Start earlier"));
    m_controls->btnIncSelectionStart->setAccessibleName(tr("Start later"));
    m_controls->edSelectionEnd->setAccessibleName(tr("End of the selection"));
    m_controls->btnDecSelectionEnd->setAccessibleName(tr("End earlier"));
    m_controls->btnIncSelectionEnd->setAccessibleName(tr("End later"));
}

void AudioPlayerWidget::ConnectSignals()
{
    using Widget = AudioPlayerWidget;
    const Controls& c = *m_controls;
    connect(c.btnMute, &QPushButton::clicked, this, &Widget::OnBtnMuteClicked);
    connect(c.btnPlayPause, &QPushButton::clicked, this, &Widget::OnBtnPlayPauseClicked);
    connect(c.btnStop, &QPushButton::clicked, this, &Widget::OnBtnStopClicked);
    connect(c.btnLoop, &QPushButton::clicked, this, &Widget::OnBtnLoopClicked);
    connect(c.btnSettings, &QPushButton::clicked, this, &Widget::SettingsButtonClicked);
    connect(c.hSliderVolume, &QSlider::valueChanged, this, &Widget::OnHSliderVolumeValueChanged);
    connect(c.btnLoadFile, &QPushButton::clicked, this, &Widget::OnBtnLoadFileClicked);
    connect(c.btnIncSelectionStart, &QPushButton::clicked, this, &Widget::OnBtnIncSelectionStartClicked);
    connect(c.btnDecSelectionStart, &QPushButton::clicked, this, &Widget::OnBtnDecSelectionStartClicked);
    connect(c.edSelectionStart, &QLineEdit::editingFinished, this, &Widget::OnSelectionStartEditingFinished);
    connect(c.btnIncSelectionEnd, &QPushButton::clicked, this, &Widget::OnBtnIncSelectionEndClicked);
    connect(c.btnDecSelectionEnd, &QPushButton::clicked, this, &Widget::OnBtnDecSelectionEndClicked);
    connect(c.edCurrentPosition, &QLineEdit::editingFinished, this, &Widget::OnCurrentPositionEditingFinished);
    connect(c.edSelectionEnd, &QLineEdit::editingFinished, this, &Widget::OnSelectionEndEditingFinished);
    connect(c.cmbboxChannelSelector, &QComboBox::currentIndexChanged, this,
            &Widget::OnCmbboxChannelSelectorCurrentIndexChanged);

    connect(m_waveformWidget, &BGFXWaveformWidget::GetSamples, this, &Widget::GetSamples);
    connect(m_waveformWidget, &BGFXWaveformWidget::SelectionChanged, this, &Widget::OnWaveformSelectionChanged);
    connect(m_waveformWidget, &BGFXWaveformWidget::AudioPositionChanged, this,
            &Widget::OnWaveformAudioPositionChanged);
    connect(m_waveformWidget, &BGFXWaveformWidget::SceneRectChanged, this, &Widget::SceneRectChanged);
    connect(this, &Widget::SceneRectChangeRequested, m_waveformWidget,
            &BGFXWaveformWidget::OnSceneRectChangeRequested);

    connect(&Progress(), &ProgressQueue::Reported, this, &Widget::OnProgressChanged);
    connect(&Progress(), &ProgressQueue::Reached, this, &Widget::OnNote);
    // The end of a task stands in line behind its reports.
    connect(&m_snippetWatcher, &QFutureWatcherBase::resultReadyAt, this,
            [this] { Progress().Leave(WorkingFile::SnippetEnded); });
    connect(&m_channelFilterWatcher, &QFutureWatcherBase::resultReadyAt, this,
            [this] { Progress().Leave(WorkingFile::ChannelFilterEnded); });

    connect(m_audioPlayer, &QMediaPlayer::positionChanged, this, &Widget::OnAudioPositionChanged);
    connect(m_audioPlayer, &QMediaPlayer::playbackStateChanged, this, &Widget::OnAudioStateChanged);
}

} // namespace vantoraudio::vantorAudioEngine::UI
