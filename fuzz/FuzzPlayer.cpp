#include "fuzz/WidgetFuzzing.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/AudioPlayerActions.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QScopedValueRollback>
#include <QtCore/QThreadPool>
#include <QtGui/QAction>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSlider>

#include <cmath>
#include <functional>
#include <optional>
#include <utility>

using namespace vantoraudio::vantorAudioEngine::UI;
using Fuzzing::Require;

namespace {

class FuzzedPlayer : public AudioPlayerWidget
{
public:
    std::function<void()> onError;

protected:
    void ErrorHandler(WavFile::AudioEngineReturnValue error) override
    {
        Require(error <= WavFile::Success && error >= WavFile::ErrorChannelCount);
        // A copy: the function may destroy this object.
        const auto function = onError;
        function();
    }
};

/** Calls the widget in any order, and again from within its signals, which may also destroy it. */
class PlayerDriver
{
public:
    explicit PlayerDriver(Fuzzing::Input& input) : m_input(input)
    {
        constexpr std::size_t mostForCalls = 300;
        const std::size_t forCalls = std::min(mostForCalls, input.remaining_bytes() / 2);
        m_files.append(Fuzzing::Folder::Get().Write(QStringLiteral("in.wav"),
                                                    input.Bytes(input.remaining_bytes() - forCalls)));
        m_files.append(Fuzzing::Folder::Get().Write(QStringLiteral("in.mp3"),
                                                    Fuzzing::Folder::Get().Read(QStringLiteral("in.wav"))));
        m_files.append(Fuzzing::Folder::Get().Path(QStringLiteral("missing.wav")));
        Require(QDir().mkpath(Fuzzing::Folder::Get().Path(QStringLiteral("copies"))));
        Connect();
    }
    ~PlayerDriver()
    {
        delete m_player;
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    Q_DISABLE_COPY_MOVE(PlayerDriver)

    void Run()
    {
        constexpr int mostCalls = 40;
        for (int i = 0; i < mostCalls && m_player && m_input.remaining_bytes() > 0; ++i) {
            Call();
            CheckGetters();
        }
    }

private:
    void Connect()
    {
        m_player->SetWritableDirectoryPath(Fuzzing::Folder::Get().Path(QStringLiteral("copies")));
        m_player->resize(500, 250);
        if (m_selectsInFile) {
            m_player->SetInteractions(BGFXWaveformWidget::Interaction::SelectBeyondView);
        }
        m_player->onError = [this] { CallBack(); };
        NoteWhatIsTold();
        const auto upon = [this](auto signal) {
            QObject::connect(m_player, signal, m_player, [this] { CallBack(); });
        };
        upon(&AudioPlayerWidget::AudioFileChanged);
        upon(&AudioPlayerWidget::ProgressChanged);
        upon(&AudioPlayerWidget::CreateSnippetFinished);
        upon(&AudioPlayerWidget::BusyChanged);
        upon(&AudioPlayerWidget::LoadStarted);
        upon(&AudioPlayerWidget::LoadFinished);
        upon(&AudioPlayerWidget::LoadFailed);
        upon(&AudioPlayerWidget::LoadCancelled);
        upon(&AudioPlayerWidget::AudioPositionChanged);
        upon(&AudioPlayerWidget::WaveFormSelectionChanged);
        upon(&AudioPlayerWidget::AudioPlayBackVolumeChanged);
        upon(&AudioPlayerWidget::AudioPlayBackMuteChanged);
        upon(&AudioPlayerWidget::SceneRectChanged);
        upon(&AudioPlayerWidget::LoopChanged);
        upon(&AudioPlayerWidget::ContextMenuRequested);
        upon(&AudioPlayerWidget::PlaybackFailed);
        upon(&AudioPlayerWidget::LoadRequested);
        upon(&AudioPlayerWidget::SettingsButtonClicked);
        upon(&AudioPlayerWidget::SceneRectChangeRequested);
    }

    /** In slots that are connected, and so called, before those that call back. */
    void NoteWhatIsTold()
    {
        const auto count = [this](auto signal, int& counter) {
            QObject::connect(m_player, signal, m_player, [&counter] { ++counter; });
        };
        count(&AudioPlayerWidget::LoadStarted, m_loadsStarted);
        count(&AudioPlayerWidget::LoadFinished, m_loadsEnded);
        count(&AudioPlayerWidget::LoadFailed, m_loadsEnded);
        count(&AudioPlayerWidget::LoadCancelled, m_loadsEnded);
        QObject::connect(m_player, &AudioPlayerWidget::BusyChanged, m_player,
                         [this](bool isBusy) { m_wasToldBusy = isBusy; });
        QObject::connect(m_player, &AudioPlayerWidget::AudioFileChanged, m_player,
                         [this](const QString& path) { m_toldFile = path; });
    }

    /** What was told last holds. */
    void CheckTold() const
    {
        Require(m_loadsStarted == m_loadsEnded);
        Require(m_wasToldBusy == m_player->IsBusy());
        const QString file = m_player->GetAudioFileName();
        Require(file.isEmpty() || file == m_toldFile);
    }

    void Call()
    {
        switch (m_input.ConsumeIntegralInRange(0, 11)) {
        case 0:
        case 1:
            Load();
            break;
        case 2:
            Wait();
            break;
        case 3:
            Play();
            break;
        case 4:
            Export();
            break;
        case 5:
            Look();
            break;
        case 6:
            Select();
            break;
        case 7:
            Use();
            break;
        case 8:
            ChangeSettings();
            break;
        case 9:
            Choose();
            break;
        case 10:
            UseActions();
            break;
        default:
            QCoreApplication::processEvents();
        }
    }

    void Load()
    {
        const QString path = AnyFile();
        switch (m_input.ConsumeIntegralInRange(0, 6)) {
        case 0:
            m_player->SetAudioFile(m_files.first());
            break;
        case 1:
            m_player->Reset();
            break;
        case 2:
            m_player->Close();
            break;
        case 3:
            m_player->CancelLoad();
            break;
        default:
            m_player->LoadFile(path);
        }
    }

    /** Until nothing is at work. What calls back from a signal may wait for what begins behind it. */
    void Wait()
    {
        if (m_depth > 0) {
            return;
        }
        QElapsedTimer patience;
        patience.start();
        while (m_player && (m_player->IsLoading() || m_player->IsBusy() || m_player->IsReadingSamples())) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
            Require(patience.elapsed() < 15000);
        }
        if (m_player) {
            CheckTold();
        }
    }

    void Play()
    {
        switch (m_input.ConsumeIntegralInRange(0, 4)) {
        case 0:
            m_player->Play();
            break;
        case 1:
            m_player->Pause();
            break;
        case 2:
            m_player->StopPlayback();
            break;
        case 3:
            m_player->SetAudioOutputDevice(m_input.ConsumeBool() ? QAudioDevice()
                                                                 : QMediaDevices::defaultAudioOutput());
            break;
        default:
            m_player->UpdateAudioPosition(Number());
        }
    }

    /** What is off at first. */
    void Choose()
    {
        constexpr std::array switches{&AudioPlayerWidget::SetTypedPositionSeeks,
                                      &AudioPlayerWidget::SetKeepBothChannels,
                                      &AudioPlayerWidget::SetKeepExistingFiles,
                                      &AudioPlayerWidget::SetKeepPeaks,
                                      &AudioPlayerWidget::SetLoadInBackground,
                                      &AudioPlayerWidget::SetScrollBackToZoomOut,
                                      &AudioPlayerWidget::SetEditedPositionStays,
                                      &AudioPlayerWidget::SetChannelChangeKeepsPlace,
                                      &AudioPlayerWidget::SetDeviceChangeKeepsPlace,
                                      &AudioPlayerWidget::SetPositionMovesSmoothly,
                                      &AudioPlayerWidget::SetFollowsPosition,
                                      &AudioPlayerWidget::SetShowsPositionAtOnce,
                                      &AudioPlayerWidget::SetKeepsViewFilled,
                                      &AudioPlayerWidget::SetPlayReturnsToStart,
                                      &AudioPlayerWidget::SetProgramChoosesFiles,
                                      &AudioPlayerWidget::SetSelectionChangeKeepsPlace,
                                      &AudioPlayerWidget::SetLabelsFit,
                                      &AudioPlayerWidget::SetColorsFollowPalette,
                                      &AudioPlayerWidget::SetWaveformTakesFocus,
                                      &AudioPlayerWidget::SetNightIcons,
                                      &AudioPlayerWidget::SetLoop};
        switch (m_input.ConsumeIntegralInRange(0, 7)) {
        case 0:
            m_player->SetInteractions(Fuzzing::AnyInteractions(m_input) | Always());
            break;
        case 1:
            m_player->SetWheelZoomFactor(Number());
            break;
        case 2:
            m_player->SetPlaybackRate(Number());
            break;
        case 3:
            m_player->UseFlexibleSizes();
            break;
        case 4:
            ShowOrHide();
            break;
        case 5:
            MoveFocus();
            break;
        default:
            (m_player->*m_input.PickValueInArray(switches))(m_input.ConsumeBool());
        }
    }

    /** The time fields tell of a focus that they lose, and Qt goes on with what it moves the focus to. */
    void MoveFocus()
    {
        const QScopedValueRollback<bool> neededByQt(m_isNeededByQt, true);
        AnyChild<QWidget>()->setFocus();
    }

    /** Hiding takes the focus, too, and Qt goes on with what it hides. */
    void ShowOrHide()
    {
        const QScopedValueRollback<bool> neededByQt(m_isNeededByQt, true);
        m_player->setVisible(m_input.ConsumeBool());
    }

    BGFXWaveformWidget::Interactions Always() const
    {
        return m_selectsInFile ? BGFXWaveformWidget::Interaction::SelectBeyondView
                               : BGFXWaveformWidget::Interactions();
    }

    void UseActions()
    {
        using Actions = AudioPlayerActions;
        if (!m_actions) {
            m_actions = new Actions(m_player);
        } else if (m_input.ConsumeIntegralInRange(0, 15) == 0) {
            delete m_actions;
        } else {
            const auto command = m_input.ConsumeIntegralInRange<int>(Actions::PlayPause, Actions::ClearSelection);
            m_actions->Get(Actions::Command(command))->trigger();
        }
    }

    void Export()
    {
        constexpr std::array channels{WavFile::ChannelLeft, WavFile::ChannelRight, WavFile::ChannelLeftRight,
                                      WavFile::ChannelMono, WavFile::ChannelNone};
        switch (m_input.ConsumeIntegralInRange(0, 4)) {
        case 0:
            m_player->CancelSnippet();
            break;
        case 1:
            m_player->SetSelectedChannel(m_input.PickValueInArray(channels));
            break;
        case 2:
            Convert();
            break;
        default:
            m_player->CreateSnippet(
                m_input.ConsumeBool() ? Fuzzing::Folder::Get().Path(QStringLiteral("snippet.wav")) : QString());
        }
    }

    /** Once, and to no high rate: of a file of 1 Hz each frame becomes a second. */
    void Convert()
    {
        constexpr int highestRate = 8000;
        if (std::exchange(m_hasConverted, true)) {
            return;
        }
        QAudioFormat format = Fuzzing::AnyFormat(m_input);
        format.setSampleRate(m_input.ConsumeIntegralInRange(-1, highestRate));
        try {
            m_player->Convert(AnyFile(), format);
        } catch (const std::bad_optional_access&) {
            // So callers learn of channel counts other than one and two.
        }
    }

    void Look()
    {
        switch (m_input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            m_player->SetDelay(Number());
            break;
        case 1:
            Q_EMIT m_player->SceneRectChangeRequested(QRectF(Number(), 0.0, Number(), 1.0));
            break;
        case 2:
            m_player->grab();
            break;
        default:
            m_player->ShowRange(Number(), Number());
        }
    }

    void Select()
    {
        m_player->SetEditMode(m_input.ConsumeBool());
        if (m_player) {
            m_player->SetSelectedSnippet({Number(), Number()});
        }
    }

    /** As the user does. The load button would open a dialog and wait. */
    void Use()
    {
        switch (m_input.ConsumeIntegralInRange(0, 6)) {
        case 0:
            if (auto* button = AnyChild<QAbstractButton>(); button->objectName() != u"btnLoadFile") {
                button->click();
            }
            break;
        case 1:
            Fuzzing::SendKey(m_input, *m_player);
            break;
        case 2:
            Fuzzing::SendKey(m_input, *AnyChild<QLineEdit>());
            break;
        case 3:
            AnyChild<QSlider>()->setValue(m_input.ConsumeIntegral<std::int8_t>());
            break;
        case 4:
            AnyChild<QComboBox>()->setCurrentIndex(m_input.ConsumeIntegralInRange(-1, 3));
            break;
        case 5:
            AskForMenu();
            break;
        default:
            UseWaveform();
        }
    }

    void AskForMenu()
    {
        const QPoint position(m_input.ConsumeIntegralInRange(-10, 600), m_input.ConsumeIntegralInRange(-10, 300));
        QContextMenuEvent event(QContextMenuEvent::Mouse, position, m_player->mapToGlobal(position));
        QApplication::sendEvent(m_player, &event);
    }

    void UseWaveform()
    {
        auto* diagram = m_player->findChild<QWidget*>(QStringLiteral("BGFXWaveformDiagramWidget"));
        Require(diagram != nullptr);
        if (m_input.ConsumeBool()) {
            Fuzzing::SendWheel(m_input, *diagram);
        } else {
            Fuzzing::SendMouse(m_input, *diagram);
        }
    }

    void ChangeSettings()
    {
        switch (m_input.ConsumeIntegralInRange(0, 8)) {
        case 0:
            m_player->SetAudioPlayBackVolume(m_input.ConsumeIntegral<int>());
            break;
        case 1:
            m_player->SetAudioPlayBackMute(m_input.ConsumeBool());
            break;
        case 2:
            m_player->SetDecodeToFloat(m_input.ConsumeBool());
            break;
        case 3:
            m_player->SetHint(m_input.ConsumeBool() ? QString() : QStringLiteral("hint"));
            break;
        case 4:
            m_player->resize(m_input.ConsumeIntegralInRange(0, 600), m_input.ConsumeIntegralInRange(0, 300));
            break;
        case 5:
            m_player->setFont(QFont(QString(), m_input.ConsumeIntegralInRange(1, 40)));
            break;
        case 6:
            m_player->setPalette(QPalette(Fuzzing::AnyColor(m_input), Fuzzing::AnyColor(m_input)));
            break;
        case 7:
            SetAnIcon();
            break;
        default:
            SetAColor();
        }
    }

    void SetAnIcon()
    {
        constexpr std::array setters{&AudioPlayerWidget::SetIconPlay,      &AudioPlayerWidget::SetIconPause,
                                     &AudioPlayerWidget::SetIconStop,      &AudioPlayerWidget::SetIconLoop,
                                     &AudioPlayerWidget::SetIconSettings,  &AudioPlayerWidget::SetIconMute,
                                     &AudioPlayerWidget::SetIconUnmute,    &AudioPlayerWidget::SetIconLoad,
                                     &AudioPlayerWidget::SetIconIncrement, &AudioPlayerWidget::SetIconDecrement};
        QIcon icon;
        if (m_input.ConsumeBool()) {
            QPixmap pixmap(m_input.ConsumeIntegralInRange(1, 100), m_input.ConsumeIntegralInRange(1, 100));
            pixmap.fill(Fuzzing::AnyColor(m_input));
            icon.addPixmap(pixmap);
        }
        (m_player->*m_input.PickValueInArray(setters))(icon);
        m_player->SetAudioPositionIcon(QStringLiteral("no such icon"));
    }

    void SetAColor()
    {
        constexpr std::array setters{&AudioPlayerWidget::SetAudioPositionMarkerColor,
                                     &AudioPlayerWidget::SetAudioSelectionColor,
                                     &AudioPlayerWidget::SetBackgroundColor,
                                     &AudioPlayerWidget::SetFrameColor,
                                     &AudioPlayerWidget::SetGridColor,
                                     &AudioPlayerWidget::SetScaleColor,
                                     &AudioPlayerWidget::SetWaveformColor};
        (m_player->*m_input.PickValueInArray(setters))(Fuzzing::AnyColor(m_input));
    }

    void CallBack()
    {
        constexpr int deepest = 2;
        if (m_depth >= deepest || !m_player || m_input.remaining_bytes() == 0 || !m_input.ConsumeBool()) {
            return;
        }
        ++m_depth;
        if (m_input.ConsumeIntegralInRange(0, 31) == 0 && !m_isNeededByQt) {
            delete m_player;
        } else {
            Call();
        }
        --m_depth;
    }

    QString AnyFile() { return m_files[m_input.ConsumeIntegralInRange<qsizetype>(0, m_files.size() - 1)]; }

    template<typename Child>
    Child* AnyChild()
    {
        const QList<Child*> children = m_player->findChildren<Child*>();
        Require(!children.isEmpty());
        return children[m_input.ConsumeIntegralInRange<qsizetype>(0, children.size() - 1)];
    }

    /** A widget may tell again what it is told, and its sums may exceed what a number holds. */
    double Number()
    {
        const double number = m_input.Number();
        m_wasToldTimes = m_wasToldTimes && std::abs(number) < Fuzzing::beyondAllFiles;
        return number;
    }

    void CheckGetters() const
    {
        if (!m_player) {
            return;
        }
        const auto [start, end] = m_player->GetSelectedSnippet();
        Require(std::isfinite(start) && std::isfinite(end));
        const double duration = m_player->GetAudioDuration();
        Require(!m_selectsInFile || !(duration > 0.0) || (start >= 0.0 && end <= duration));
        Require(!m_wasToldTimes || std::isfinite(m_player->GetDelay()));
        Require(m_player->GetPlaybackRate() >= 0.25 && m_player->GetPlaybackRate() <= 4.0);
        Require(m_player->GetAudioPosition() >= 0.0);
        Require(m_player->GetAudioPlayBackVolume() >= 0 && m_player->GetAudioPlayBackVolume() <= 100);
        // A WAV file of SetAudioFile() that states no rate is as long as its header says: without end.
        const bool hasRate = m_player->GetAudioFileFormat().sampleRate() != 0;
        Require(std::isfinite(duration) || !hasRate);
        const auto [first, last] = m_player->GetVisibleRange();
        const bool isViewFinite =
            std::isfinite(first) && std::isfinite(last) && std::isfinite(m_player->GetTimeAt({100, 100}));
        Require(isViewFinite || !hasRate || !m_wasToldTimes);
    }

    Fuzzing::Input& m_input;
    QStringList m_files;
    QPointer<FuzzedPlayer> m_player = new FuzzedPlayer;
    QPointer<AudioPlayerActions> m_actions;
    const bool m_selectsInFile = m_input.ConsumeBool();
    bool m_wasToldTimes = true;
    bool m_wasToldBusy = false;
    int m_loadsStarted = 0;
    int m_loadsEnded = 0;
    QString m_toldFile;
    bool m_hasConverted = false;
    bool m_isNeededByQt = false;
    int m_depth = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::EnsureApplication();
    vantoraudio::AudioEngine::AudioImporter::LimitAllocations(Fuzzing::largestAllocation);
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    PlayerDriver(input).Run();
    Fuzzing::Folder::Get().Clear();
    return 0;
}
