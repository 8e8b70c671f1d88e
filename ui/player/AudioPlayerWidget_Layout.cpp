#include "ui/player/Internals.h"
#include "ui/player/LibraryIcon.h"

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

QLineEdit* CreateTotalField(QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setObjectName("edTotalDuration"_L1);
    field->setFixedSize(80, 20);
    field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    field->setReadOnly(true);
    const QSignalBlocker blocker(field);
    field->setText(u"00:00:00,000"_s);
    return field;
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
    m_internals->LoadIcons();
    // The point before the milliseconds stands for any character, so a comma is accepted too.
    m_timeValidator = std::make_unique<QRegularExpressionValidator>(
        QRegularExpression(uR"((2[0-3]|[01][0-9]):[0-5][0-9]:[0-5][0-9].\d{3})"_s));
    m_internals->controls.mainLayout = CreateLayoutOn<QVBoxLayout>(this, "mainLayout", {0, 0, 0, 6});
    m_internals->controls.mainLayout->setSpacing(0);
    m_internals->SetupWaveform();
    SetupAudioPlayerControls();
    SetupSelectionsControls();
    SetupHintSection();
    m_internals->SetupAccessibleNames();
    SetHint(QString());
    SetEditMode(false);
    EnableAudioControls(false);
}

void AudioPlayerWidget::Internals::LoadIcons()
{
    widget.m_loadIcon = LibraryIcon("LoadAudio"_L1);
    widget.m_playIcon = LibraryIcon("PlayerPlay"_L1);
    widget.m_pauseIcon = LibraryIcon("PlayerPause"_L1);
    widget.m_stopIcon = LibraryIcon("PlayerStop"_L1);
    widget.m_loopIcon = LibraryIcon("PlayerLoop"_L1);
    // This library has no such picture: the program decides what the settings button does, and brings its icon.
    widget.m_settingsIcon = LibraryIcon("Preferences"_L1);
    widget.m_muteIcon = LibraryIcon("Mute"_L1);
    widget.m_unmuteIcon = LibraryIcon("Unmute"_L1);
}

void AudioPlayerWidget::Internals::SetupWaveform()
{
    QFrame* frame = CreateFrame(&widget, "frmWaveForm");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "waveFormHBoxLayout", {0, 0, 0, 6});
    layout->setSpacing(6);
    widget.m_waveformWidget = new BGFXWaveformWidget(frame);
    layout->addWidget(widget.m_waveformWidget);
    controls.mainLayout->addWidget(frame);
}

void AudioPlayerWidget::SetupAudioPlayerControls()
{
    QFrame* frame = CreateFrame(this, "frmAudioControls");
    frame->setMaximumSize(QWIDGETSIZE_MAX, 30);
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "audioControlsHLayout", {30, 0, 20, 0});
    layout->addLayout(m_internals->SetupVolumeControls(frame));
    AddSpacer(layout, 0, 20, QSizePolicy::Expanding);
    layout->addLayout(m_internals->SetupTransportControls(frame));
    AddSpacer(layout, 0, 20, QSizePolicy::Expanding);

    QLabel* currentPosition = CreateLabel(frame, "lblCurrentPos", tr("Current position:"));
    currentPosition->setFixedHeight(20);
    layout->addWidget(currentPosition);
    m_internals->controls.edCurrentPosition =
        m_internals->CreateTimeField(frame, "edCurrentPosition", {80, 20}, u"00:00:00,000"_s);
    layout->addWidget(m_internals->controls.edCurrentPosition);
    AddSpacer(layout, 10, 16, QSizePolicy::Preferred);
    QLabel* total = CreateLabel(frame, "lblHeaderTotal", tr("Total:"));
    total->setFixedHeight(20);
    layout->addWidget(total);
    m_internals->controls.edTotalDuration = CreateTotalField(frame);
    layout->addWidget(m_internals->controls.edTotalDuration);
    m_internals->controls.mainLayout->addWidget(frame);
}

QLayout* AudioPlayerWidget::Internals::SetupVolumeControls(QWidget* parent)
{
    auto* layout = CreateLayout<QHBoxLayout>("volumeControlsHLayout", {});
    controls.btnMute = CreateButton(parent, "btnMute", {28, 20}, widget.m_unmuteIcon);
    controls.btnMute->setCheckable(true);
    layout->addWidget(controls.btnMute);

    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName("hSliderVolume"_L1);
    slider->setFixedSize(80, 20);
    {
        // The default range ends at 99, so the full volume of a new player shows as 99. Hosts rely on that.
        const QSignalBlocker blocker(slider);
        slider->setValue(widget.m_audioPlayer->Volume());
    }
    layout->addWidget(slider);
    controls.hSliderVolume = slider;
    return layout;
}

QLayout* AudioPlayerWidget::Internals::SetupTransportControls(QWidget* parent)
{
    // The name lacks a letter: style sheets of host programs use it like this.
    auto* layout = CreateLayout<QHBoxLayout>("playerContolsHLayout", {});
    controls.btnStop = CreateButton(parent, "btnStop", {28, 22}, widget.m_stopIcon);
    controls.btnPlayPause = CreateButton(parent, "btnPlayPause", {28, 22}, widget.m_playIcon);
    controls.btnPlayPause->setCheckable(true);
    controls.btnLoop = CreateButton(parent, "btnLoop", {28, 22}, widget.m_loopIcon);
    controls.btnLoop->setCheckable(true);
    controls.btnSettings = CreateButton(parent, "btnSettings", {28, 22}, widget.m_settingsIcon);
    layout->addWidget(controls.btnStop);
    layout->addWidget(controls.btnPlayPause);
    layout->addWidget(controls.btnLoop);
    layout->addWidget(controls.btnSettings);
    return layout;
}

QLineEdit* AudioPlayerWidget::Internals::CreateTimeField(QWidget* parent, const char* name, const QSize& size,
                                                         const QString& text)
{
    auto* field = new QLineEdit(parent);
    const QSignalBlocker blocker(field);
    field->setObjectName(QLatin1StringView(name));
    field->setFixedSize(size);
    field->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    field->setInputMask(u"99:99:99.999"_s);
    field->setText(text);
    field->setValidator(widget.m_timeValidator.get());
    return field;
}

void AudioPlayerWidget::SetupSelectionsControls()
{
    QFrame* frame = CreateFrame(this, "frmEditingControls");
    frame->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "editingControlshLayout", {30, 0, 20, 0});
    layout->addLayout(m_internals->SetupLoadAndChannelControls(frame));
    layout->addLayout(m_internals->SetupSelectionControls(frame));
    m_internals->controls.frmEditingControls = frame;
    m_internals->controls.mainLayout->addWidget(frame);
}

QLayout* AudioPlayerWidget::Internals::SetupLoadAndChannelControls(QWidget* parent)
{
    auto* column = CreateLayout<QVBoxLayout>("controlsLeftVLayout", {0, 0, 6, 0});
    column->addWidget(CreateHeading(parent, "lblAudio", AudioPlayerWidget::tr("Audio file")));
    column->addWidget(CreateLine(parent, "hLineLeftTop"));

    auto* row = CreateLayout<QHBoxLayout>("controlsLeftHLayout", {6, 2, 6, 2});
    controls.btnLoadFile = new QPushButton(widget.m_loadIcon, AudioPlayerWidget::tr("Load audio file"), parent);
    controls.btnLoadFile->setObjectName("btnLoadFile"_L1);
    row->addWidget(controls.btnLoadFile);
    AddSpacer(row, 10, 20, QSizePolicy::Fixed);
    row->addWidget(CreateLabel(parent, "lblChannel", AudioPlayerWidget::tr("Use channel")));
    controls.cmbboxChannelSelector = new QComboBox(parent);
    controls.cmbboxChannelSelector->setObjectName("cmbboxChannelSelector"_L1);
    controls.cmbboxChannelSelector->setFixedSize(158, 23);
    row->addWidget(controls.cmbboxChannelSelector);
    AddSpacer(row, 40, 20, QSizePolicy::Expanding);
    column->addLayout(row);

    column->addWidget(CreateLine(parent, "hLineLeftBottom"));
    return column;
}

QLayout* AudioPlayerWidget::Internals::SetupSelectionControls(QWidget* parent)
{
    auto* column = CreateLayout<QVBoxLayout>("controlsRightVLayout", {6, 0, 0, 0});
    column->addWidget(CreateHeading(parent, "lblSelection", AudioPlayerWidget::tr("Selection")));
    column->addWidget(CreateLine(parent, "hLineRightTop"));

    auto* row = CreateLayout<QHBoxLayout>("controlsRightHLayout", {6, 2, 6, 2});
    row->addWidget(CreateLabel(parent, "lblStart", AudioPlayerWidget::tr("Start:")));
    row->addWidget(SetupSelectionStart(parent));
    row->addWidget(CreateLabel(parent, "lblEnd", AudioPlayerWidget::tr("End:")));
    row->addWidget(SetupSelectionEnd(parent));
    AddSpacer(row, 20, 20, QSizePolicy::Expanding);
    column->addLayout(row);

    column->addWidget(CreateLine(parent, "hLineRightBottom"));
    return column;
}

QFrame* AudioPlayerWidget::Internals::SetupSelectionStart(QWidget* parent)
{
    QFrame* frame = CreateFrame(parent, "frmSelectionStart");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "selectionStartHLayout", {});
    // A point here, where the other fields start with a comma.
    controls.edSelectionStart = CreateTimeField(frame, "edSelectionStart", {106, 22}, u"00:00:00.000"_s);
    controls.btnDecSelectionStart =
        CreateStepButton(frame, "btnDecSelectionStart", LibraryIcon("DigitalMinus"_L1),
                         AudioPlayerWidget::tr("Use CTRL / CMD for coarse decrements"));
    controls.btnIncSelectionStart =
        CreateStepButton(frame, "btnIncSelectionStart", LibraryIcon("DigitalPlus"_L1),
                         AudioPlayerWidget::tr("Use CTRL / CMD for coarse increments"));
    layout->addWidget(controls.edSelectionStart);
    layout->addWidget(controls.btnDecSelectionStart);
    layout->addWidget(controls.btnIncSelectionStart);
    AddSpacer(layout, 20, 20, QSizePolicy::Expanding);
    controls.frmSelectionStart = frame;
    return frame;
}

QFrame* AudioPlayerWidget::Internals::SetupSelectionEnd(QWidget* parent)
{
    QFrame* frame = CreateFrame(parent, "frmSelectionEnd");
    auto* layout = CreateLayoutOn<QHBoxLayout>(frame, "selectionEndHLayout", {});
    controls.edSelectionEnd = CreateTimeField(frame, "edSelectionEnd", {106, 22}, u"00:00:00.000"_s);
    controls.btnDecSelectionEnd = CreateStepButton(frame, "btnDecSelectionEnd", LibraryIcon("DigitalMinus"_L1),
                                                   AudioPlayerWidget::tr("Use CTRL / CMD for coarse decrements"));
    controls.btnIncSelectionEnd = CreateStepButton(frame, "btnIncSelectionEnd", LibraryIcon("DigitalPlus"_L1),
                                                   AudioPlayerWidget::tr("Use CTRL / CMD for coarse increments"));
    layout->addWidget(controls.edSelectionEnd);
    layout->addWidget(controls.btnDecSelectionEnd);
    layout->addWidget(controls.btnIncSelectionEnd);
    AddSpacer(layout, 20, 20, QSizePolicy::Expanding);
    controls.frmSelectionEnd = frame;
    return frame;
}

void AudioPlayerWidget::SetupHintSection()
{
    QFrame* frame = CreateFrame(this, "frmAudioPlayerHint");
    frame->setFixedHeight(26);
    auto* layout = CreateLayoutOn<QVBoxLayout>(frame, "audioPlayerhintVLayout", {30, 0, 20, 0});
    m_internals->controls.lblAudioPlayerHint = CreateLabel(frame, "lblAudioPlayerHint", QString());
    m_internals->controls.lblAudioPlayerHint->setFixedHeight(22);
    m_internals->controls.lblAudioPlayerHint->setIndent(6);
    layout->addWidget(m_internals->controls.lblAudioPlayerHint);
    layout->addWidget(CreateLine(frame, "hLineHintBottom"));
    m_internals->controls.frmAudioPlayerHint = frame;
    m_internals->controls.mainLayout->addWidget(frame);
}

/** What screen readers call the controls. Most of them show only a picture. */
void AudioPlayerWidget::Internals::SetupAccessibleNames()
{
    widget.m_waveformWidget->setAccessibleName(AudioPlayerWidget::tr("Waveform"));
    controls.btnMute->setAccessibleName(AudioPlayerWidget::tr("Mute"));
    controls.hSliderVolume->setAccessibleName(AudioPlayerWidget::tr("Volume"));
    controls.btnStop->setAccessibleName(AudioPlayerWidget::tr("Stop"));
    controls.btnPlayPause->setAccessibleName(AudioPlayerWidget::tr("Play"));
    controls.btnLoop->setAccessibleName(AudioPlayerWidget::tr("Loop"));
    controls.btnSettings->setAccessibleName(AudioPlayerWidget::tr("Settings"));
    controls.edCurrentPosition->setAccessibleName(AudioPlayerWidget::tr("Current position"));
    controls.edTotalDuration->setAccessibleName(AudioPlayerWidget::tr("Total duration"));
    controls.cmbboxChannelSelector->setAccessibleName(AudioPlayerWidget::tr("Channel"));
    controls.edSelectionStart->setAccessibleName(AudioPlayerWidget::tr("Start of the selection"));
    controls.btnDecSelectionStart->setAccessibleName(AudioPlayerWidget::tr("Start earlier"));
    controls.btnIncSelectionStart->setAccessibleName(AudioPlayerWidget::tr("Start later"));
    controls.edSelectionEnd->setAccessibleName(AudioPlayerWidget::tr("End of the selection"));
    controls.btnDecSelectionEnd->setAccessibleName(AudioPlayerWidget::tr("End earlier"));
    controls.btnIncSelectionEnd->setAccessibleName(AudioPlayerWidget::tr("End later"));
}

void AudioPlayerWidget::ConnectSignals()
{
    using Widget = AudioPlayerWidget;
    const Controls& c = m_internals->controls;
    connect(c.btnMute, &QPushButton::clicked, this, &Widget::OnBtnMuteClicked);
    connect(c.btnPlayPause, &QPushButton::toggled, this,
            [this](bool plays) { m_internals->PlayOnWithCopy(plays); });
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

    connect(&m_internals->loaded.Progress(), &ProgressQueue::Reported, this, &Widget::OnProgressChanged);
    connect(&m_internals->loaded.Progress(), &ProgressQueue::Reached, this,
            [this](int note) { m_internals->OnNote(note); });
    // The end of a task waits in line behind its reports.
    connect(&m_snippetWatcher, &QFutureWatcherBase::resultReadyAt, this,
            [this] { m_internals->loaded.Progress().Leave(WorkingFile::SnippetEnded); });
    connect(&m_channelFilterWatcher, &QFutureWatcherBase::resultReadyAt, this,
            [this] { m_internals->loaded.Progress().Leave(WorkingFile::ChannelFilterEnded); });

    connect(m_audioPlayer, &QMediaPlayer::positionChanged, this, &Widget::OnAudioPositionChanged);
    connect(m_audioPlayer, &QMediaPlayer::playbackStateChanged, this, &Widget::OnAudioStateChanged);
    connect(m_audioPlayer, &QMediaPlayer::playbackRateChanged, this, [this] { m_internals->LetPositionMove(); });
    connect(m_audioPlayer, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& reason) { m_internals->TellOfPlaybackFailure(reason); });
}

} // namespace vantoraudio::vantorAudioEngine::UI
