#pragma once

#include "ui/player/Controls.h"
#include "ui/player/FileLoad.h"
#include "ui/player/LoadedFile.h"
#include "ui/player/PlayableCopy.h"
#include "ui/player/SelectionSteps.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QList>
#include <QtCore/QPointer>

#include <initializer_list>
#include <optional>

class QLayout;

namespace vantoraudio::vantorAudioEngine::UI {

/** What the player widget has and does behind its public face. */
struct AudioPlayerWidget::Internals
{
    using Result = WavFile::AudioEngineReturnValue;
    using Problem = AudioEngine::AudioFileInfo::Problem;

    explicit Internals(AudioPlayerWidget& owner) : widget(owner) {}

    /** Where the user is in the file. */
    struct Place
    {
        std::pair<double, double> visibleRange;
        double position = 0.0;
        bool isPlaying = false;
    };

    /** While it lives a control tells of a change, and still uses itself when the slots have returned. */
    class Telling
    {
    public:
        Telling(AudioPlayerWidget& owner, QWidget* control) : m_owner(&owner)
        {
            owner.m_internals->telling.append(control);
        }
        ~Telling()
        {
            if (m_owner) {
                m_owner->m_internals->telling.removeLast();
            }
        }
        Q_DISABLE_COPY_MOVE(Telling)

    private:
        QPointer<AudioPlayerWidget> m_owner;
    };

    /** Whether the widget still has the file of the moment in which this was made: a receiver of a signal may open
     * another one, close it or destroy the widget. */
    class SameFile
    {
    public:
        explicit SameFile(Internals& internals) : m_owner(&internals.widget), m_count(internals.fileCount) {}
        explicit operator bool() const { return m_owner && m_owner->m_internals->fileCount == m_count; }

    private:
        QPointer<AudioPlayerWidget> m_owner;
        int m_count;
    };

    // Layout
    void LoadIcons();
    void SetupWaveform();
    QLayout* SetupVolumeControls(QWidget* parent);
    QLayout* SetupTransportControls(QWidget* parent);
    QLayout* SetupLoadAndChannelControls(QWidget* parent);
    QLayout* SetupSelectionControls(QWidget* parent);
    QFrame* SetupSelectionStart(QWidget* parent);
    QFrame* SetupSelectionEnd(QWidget* parent);
    void SetupAccessibleNames();
    QLineEdit* CreateTimeField(QWidget* parent, const char* name, const QSize& size, const QString& text);

    // Loading
    [[nodiscard]] QString WorkingPathOf(const QString& path) const;
    [[nodiscard]] Result Decode(const QString& path, const QString& workingPath) const;
    void OpenWorkingFile(Result resultSoFar, const QString& workingPath);
    [[nodiscard]] QString DropLoad();
    void DropLoadAndTell();
    void OnLoadEnded();
    void ShowCopy(const QString& path, const WorkingCopy& copy);
    void OpenCopy(const QString& path, const WorkingCopy& copy);
    void FailLoad(const QString& path, Problem problem, Result code);
    [[nodiscard]] QString AskForFile();
    [[nodiscard]] bool Empty();
    [[nodiscard]] bool ShowLoadedFile(const QString& workingPath);
    void ShowWaveform(double duration);

    // Transport
    void ShowPlayIcon(bool isPlaying);
    void ShowMuteIcon(bool isMuted);
    void ShowAsPlaying(bool isPlaying);
    [[nodiscard]] bool IsPositionEdited() const;
    [[nodiscard]] bool GoToTyped(double time);
    [[nodiscard]] bool IsLeftUntyped(const QLineEdit& field) const;
    void SeekToLine() const;
    [[nodiscard]] bool CanPlayOn() const;
    [[nodiscard]] bool GoToWherePlayingBegins();
    void PlaySelection(const Selection& selection);
    void CorrectLateReport(qint64 milliseconds);
    void LetPositionMove() const;
    [[nodiscard]] static QWidget* FocusedIn(std::initializer_list<const QFrame*> frames);
    void TakeFocusBack();
    /** Gives the player a file and what of it is to be played, the whole if that is empty. A file that no output
     * can play is played from a copy, as soon as that is made, with the selection of that moment; until then the
     * player has no source. */
    void SetPlayedFile(const QString& path, const Selection& selection);
    void LetPlay(const QString& path, const Selection& selection);
    void TellOfPlaybackFailure(const QString& reason);
    void PlayCopy();
    [[nodiscard]] bool AwaitsCopy() const;
    void PlayOnWithCopy(bool plays);

    // Channels and tasks
    /** Passes on what was reported before a busy time ends. False: it is not the caller's to end any more, because
     * a slot ended it, started another or destroyed the widget, or because an outer call does so. */
    [[nodiscard]] bool TellAllReports();
    void FillChannelSelector();
    void ShowChannel(WavFile::ChannelFormat channel);
    void OnNote(int note);
    [[nodiscard]] QString FilteredPathOf(WavFile::ChannelFormat channel) const;
    void PlayFilteredFile();
    [[nodiscard]] Place PlaceOfUser() const;
    void GoBackTo(const Place& place);
    void GoBackToPreviousChannel();
    void DropFiltering();
    void ForgetSnippet();

    AudioPlayerWidget& widget;
    Controls controls;
    LoadedFile loaded;
    /** Null when nothing is being loaded in the background. */
    std::unique_ptr<FileLoad> loading;
    /** Null when the player plays the file itself. */
    std::unique_ptr<PlayableCopy> playableCopy;
    /** Only while a channel change that keeps the place waits for that copy: whether it plays on then. */
    std::optional<bool> playsOnWithCopy;
    /** The volume that was set last, which the player may read back as one percent less. */
    int volume = 100;
    bool decodesToFloat = false;
    bool loadsInBackground = false;
    bool programChoosesFiles = false;
    bool typedPositionSeeks = false;
    bool playReturnsToStart = false;
    bool editedPositionStays = false;
    bool channelChangeKeepsPlace = false;
    bool deviceChangeKeepsPlace = false;
    bool selectionChangeKeepsPlace = false;
    bool positionMovesSmoothly = false;
    /** The waveform had the focus, which it cannot have while it is busy. */
    bool awaitsFocus = false;
    /** What Qt gave it to meanwhile, if anything. */
    QPointer<QWidget> focusStandIn;
    /** Controls that tell of a change at this moment. */
    QList<QWidget*> telling;
    /** How many changes of the selection the player is being told of, one within the other. */
    int selectionChanges = 0;
    /** How many reports of the player's position are under way, one within the other. */
    int positionReports = 0;
    /** Counts what changes the selection. */
    int selectionCount = 0;
    /** Counts how often a busy time began or ended. */
    int busyCount = 0;
    bool isTellingAll = false;
    /** The busy time that ends when all is told, unless it has ended by then. */
    int busyCountToEnd = 0;
    /** Counts how often the file was opened or closed. */
    int fileCount = 0;
    /** Counts what ends a load: the next load and every closing. */
    int loadCount = 0;
    /** Counts what ends a filtering: the next filtering and every closing. */
    int filteringCount = 0;
    /** The latest filtering is the way back from one that failed. */
    bool isGoingBack = false;
};

} // namespace vantoraudio::vantorAudioEngine::UI
