#pragma once

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Export.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFutureWatcher>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioFormat>
#include <QtMultimedia/QMediaPlayer>
#include <QtWidgets/QWidget>

#include <memory>
#include <utility>

class AudioPlayer;
class QRegularExpressionValidator;

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * Loads one audio file, shows its waveform, plays it, and lets the user choose a channel and a stretch of time,
 * which can be written to a new WAV file. Everything that an embedding program needs:
 *
 *     auto* player = new AudioPlayerWidget(this);
 *     player->SetWritableDirectoryPath(cacheDirectory);
 *     player->SetEditMode(true);
 *     player->LoadFile(path);
 *
 * The widget never works on the caller's file. It copies WAV files into the writable directory, decodes everything
 * else into it, and reads, plays and edits that working copy, which has the caller's file name.
 *
 * LoadFile() works in the background, takes every file that FFmpeg reads, and goes by what is in a file. Its
 * working copies lie in hidden folders, where they meet no other file; each is removed when another file is loaded
 * or the widget is destroyed, with the channel files in it.
 *
 * SetAudioFile() goes by the file's name and returns when it is done. Its working copies lie in the writable
 * directory itself. A copy that is there already is used as it is, stale or not: remove it to have the file read
 * again. Nothing else is deleted there but a file that could not be decoded, a channel file that could not be
 * finished, and the hidden files and folders that a killed program has left.
 *
 * Every failed step on a file ends in ErrorHandler(), which does nothing: derive and override it to tell the user.
 * PlaybackFailed() tells what the player cannot play.
 *
 * Times are seconds from the start of the file. GUI thread only. Reading samples, writing a snippet and filtering
 * a channel run on QThreadPool::globalInstance(); LoadFile(), and the copy of a file whose rate no output plays,
 * run on threads of the library's own. SetAudioFile() decodes with an event loop of its own: the program keeps
 * running and may load another file, reset, close or destroy the widget.
 */
class VANTORAUDIOENGINE_EXPORT AudioPlayerWidget : public QWidget
{
    Q_OBJECT

public:
    explicit AudioPlayerWidget(QWidget* parent = nullptr);
    /** Does not wait: tasks in the background are told to end and left alone. After a Close() before it nothing
     * is written any more, unless a SetAudioFile() is still decoding: that goes on to its end. */
    ~AudioPlayerWidget() override;

    /**
     * Loads a file, unless its working copy is loaded already; an empty path unloads. Ends with
     * AudioFileChanged(), or with ErrorHandler(): ErrorWriteHeader when the file cannot be copied into the
     * writable directory, otherwise what Decoder::Convert() (which may be ErrorWriteHeader, too) and
     * WavFile::Open() give. When the copying fails the former file is still loaded, after every other failure
     * none: GetAudioFileName() tells which. A load that is overtaken by another one, Reset(), Close() or the
     * destructor ends silently.
     *
     * Only names that end in exactly ".wav" and have no other dot are WAV files; everything else, take.WAV and
     * a.b.wav too, is decoded to 96 kHz.
     */
    void SetAudioFile(const QString& path);

    /**
     * Loads a file in the background, whatever it is called; an empty path unloads. Returns at once. What can be
     * read is everything of CanBeLoaded() in AudioFileInfo; WAV files may be of any length. Until the new file is
     * there the former one stays as it is, with its selection, playback and tasks; after a failure too, unless
     * what fails is the opening of the finished copy.
     *
     * LoadStarted() comes first, before this returns, then ProgressChanged(permille, 0, 1000, "Loading...") now
     * and then. In the end exactly one of these comes, unless the widget is destroyed before:
     * - LoadFinished(), after AudioFileChanged(). The former file passes through Reset() before that. A file that
     *   is loaded already, and has the size and time that it had then, stays without AudioFileChanged().
     * - LoadFailed(), after ErrorHandler() with the code of ImportResult::Code(), or of WavFile::Open() when the
     *   finished copy cannot be opened.
     * - LoadCancelled(), when CancelLoad(), the next LoadFile(), SetAudioFile(), Reset() or Close() overtakes it.
     */
    void LoadFile(const QString& path);
    /** Ends LoadFile() without waiting; LoadCancelled() comes before this returns. Does nothing without it. */
    void CancelLoad();
    /** LoadFile() is at work. */
    [[nodiscard]] bool IsLoading() const;

    /** Unloads: stops playback, Close(), and an empty view. Duration, name and selection are empty then; the other
     * getters still tell of the former file. The player keeps that file: Space plays it, Play() does not. */
    void Reset();
    /** Cancels LoadFile(), stops the tasks in the background, waits for their end and closes the file. What there
     * is of an unfinished snippet or channel file is removed. The view and the player stay as they are. While it
     * is busy, the reports of progress that still wait and BusyChanged(false) come before this returns. A snippet
     * that was whole already stays; CreateSnippetFinished() tells of it later, after one more BusyChanged(false).
     */
    void Close();

    /** For the program; nothing in here calls it. Converts another file in place, as WavFile::Convert() does with
     * an empty output path, what it throws included; true on success. What is loaded here is untouched. Blocks
     * until done. */
    bool Convert(const QString& path, const QAudioFormat& format);

    /** 0 without a file. */
    [[nodiscard]] double GetAudioDuration() const;
    /** That of the last file that was opened, also after Reset(). */
    [[nodiscard]] QAudioFormat GetAudioFileFormat() const;
    /** The full path of the working copy; empty without a file. */
    [[nodiscard]] QString GetAudioFileName() const;
    /** The path of the file that LoadFile() loaded, or that SetAudioFile() was given last and could copy; also
     * after Reset(). */
    [[nodiscard]] QString GetOriginalAudioFilePath() const;

    /** Where working copies lie. The directory must exist; it is neither checked nor created. Empty at first,
     * which means the current directory of the program. A compressed file that SetAudioFile() loads from this
     * very directory is replaced by its decoded audio: choose one that holds nothing of the user's. */
    [[nodiscard]] QString GetWritableDirectoryPath() const;
    void SetWritableDirectoryPath(const QString& path);

    /** Whether SetAudioFile() decodes with Decoder::ConvertToFloat(), after which FLAC files and WAV files under
     * unusual names sound right, instead of Decoder::Convert(). Off at first; takes effect with the next load. */
    [[nodiscard]] bool GetDecodeToFloat() const;
    void SetDecodeToFloat(bool decodeToFloat);

    /** Whether the load button calls LoadFile(), and offers all of GetLoadableFiles(), instead of SetAudioFile().
     * Off at first. */
    [[nodiscard]] bool GetLoadInBackground() const;
    void SetLoadInBackground(bool loadInBackground);
    /** The load button emits LoadRequested() instead of opening a dialog that stands in the current folder. Off at
     * first. */
    void SetProgramChoosesFiles(bool programChooses);
    /** The filter of a QFileDialog for LoadFile(): the usual names of audio files, and all files. */
    [[nodiscard]] static QString GetLoadableFiles();

    /** A snippet is being written or a channel filtered. */
    [[nodiscard]] bool IsBusy() const;

    /** Samples for the waveform are being read, or have been and are not shown yet. Ends in the event loop, right
     * after ProgressChanged(0, 0, 1, "Updated"), when they are shown; at once with Close(). */
    [[nodiscard]] bool IsReadingSamples() const;

    /** Shows the audio between two times, in either order, brought into the file's length. SceneRectChanged()
     * tells of it. Times that are not finite are ignored, and so is a range that has no length in the file. */
    void ShowRange(double start, double end);

    /** The first and the last time that show, in seconds; (0, 1) without a file. */
    [[nodiscard]] std::pair<double, double> GetVisibleRange() const;

    /** What shows at a place of this widget: the time in seconds, and the lowest and the highest sample; see
     * BGFXWaveformWidget. */
    [[nodiscard]] double GetTimeAt(const QPoint& position) const;
    [[nodiscard]] std::pair<double, double> GetLevelAt(const QPoint& position) const;

    /** Seconds of silence shown behind the audio. Loading a file or choosing another channel sets it to 0. */
    [[nodiscard]] double GetDelay() const;
    void SetDelay(double delay);

    /** Shows or hides the controls for loading, channel and selection, and allows selecting in the waveform. Off
     * at first. Channel box and selection fields of a file that is loaded already are not enabled by this. */
    void SetEditMode(bool isEditing);
    /** A line of text below the controls; empty hides it. */
    void SetHint(const QString& text);
    /** With true, as at first, turning the wheel back (toward the user) while Control is held zooms out. */
    void SetScrollBackToZoomOut(bool scrollBackToZoomOut);

    // What follows is off at first.
    /** What the mouse may do in the view, see BGFXWaveformWidget. */
    void SetInteractions(BGFXWaveformWidget::Interactions interactions);
    /** A position typed into its field moves the player, too, and so does a start of the selection; otherwise the
     * player stays, and for the position only AudioPositionChanged() tells of it. Leaving one of the three time
     * fields without typing then does nothing. */
    void SetTypedPositionSeeks(bool seeks);
    /** Playing begins at the start of the selection where the position lies outside it or in its last 10 ms, and
     * without one at 0 in the last 10 ms of the file; otherwise it begins wherever the position is. */
    void SetPlayReturnsToStart(bool returns);
    /** CreateSnippet() writes a stereo file where both channels of a stereo file are selected; otherwise their
     * average. Holds for snippets that start from now on. */
    void SetKeepBothChannels(bool keep);
    /** Where 300 s or more are read at once, the waveform shows every peak, however short; otherwise it shows one
     * frame in many. Reading takes longer. Holds for the samples that are read from now on, see WavFile. */
    void SetKeepPeaks(bool keep);
    /** CreateSnippet() fails where a file has the name, also one that came while the snippet was written, and
     * leaves it alone; otherwise it replaces that file. Holds for snippets that start from now on. */
    void SetKeepExistingFiles(bool keep);
    /** While the user types into the position field or has text selected there, playing does not write it over,
     * and where it does the cursor keeps its place. */
    void SetEditedPositionStays(bool stays);
    /** Another channel keeps the visible range and the position, and plays on; otherwise it shows the whole file
     * and waits at the start of the selection or file. */
    void SetChannelChangeKeepsPlace(bool keeps);

    /** While it plays, a selection that changes around the position does not move it; otherwise every change of
     * the selection plays it from its start. */
    void SetSelectionChangeKeepsPlace(bool keeps);
    /** Another output device plays on where it is; otherwise SetAudioOutputDevice() stops. */
    void SetDeviceChangeKeepsPlace(bool keeps);

    /** That of the last file, also after Reset(); ChannelNone before the first one. */
    [[nodiscard]] WavFile::ChannelFormat GetSelectedChannel() const;
    /** Chooses the channel that is played, as the channel box does, and filters it in the background:
     * BusyChanged() tells of it. On failure the former channel comes back, and ErrorHandler() is called. Does
     * nothing when the file does not offer it, or after Close(). */
    void SetSelectedChannel(WavFile::ChannelFormat channel);

    /** Start and end; (0, 0) without a selection. A new selection is cut to BGFXWaveformWidget::MAX_SNIPPET_LENGTH
     * and to the visible range, or with Interaction::SelectBeyondView to the file; one that is not finite is
     * ignored. Without a file the visible range is (0, 1). */
    [[nodiscard]] std::pair<double, double> GetSelectedSnippet() const;
    void SetSelectedSnippet(std::pair<double, double> snippet);
    /** The position stays. WaveFormSelectionChanged((0, 0)) tells of it; does nothing without a selection. */
    void ClearSelection();
    /** Writes the selection of the selected channel to a new file, in the background. Ends with
     * CreateSnippetFinished() or ErrorHandler(). Dropped without a word while samples are being read. If an
     * earlier snippet is still being written, its file is finished without a signal.
     *
     * Without a selection the new file has no frames, and it replaces an older one all the same: ask
     * GetSelectedSnippet() first. */
    void CreateSnippet(const QString& filePath);
    /** Stops the snippet that is being written; nothing is left of it. The reports of progress that still wait and
     * BusyChanged() come before this returns true; nothing else tells of it.
     *
     * False when no snippet is being written, or it has ended already, of which CreateSnippetFinished() or
     * ErrorHandler() still tells. A whole snippet stays. */
    bool CancelSnippet();

    /** Plays from the current position; does nothing while it plays, before the first file, or after Reset().
     * After Close() it plays the file that was loaded. */
    void Play();
    /** Stays where it is; does nothing while it does not play. */
    void Pause();
    [[nodiscard]] bool IsPlaying() const;
    /** Stops and goes back to the start. */
    void StopPlayback();
    /** Moves player and position line to a time in seconds. The player brings it into the file, the line stands
     * wherever it is told to, see BGFXWaveformWidget. */
    void UpdateAudioPosition(double seconds);
    /** The player's position in seconds; 0 before the first file. */
    [[nodiscard]] double GetAudioPosition() const;
    /** Whether the selection, or the whole file, is played again and again; off at first. LoopChanged() tells of a
     * change, whoever makes it. */
    void SetLoop(bool loop);
    [[nodiscard]] bool GetLoop() const;
    /** How fast files play, from 0.25 to 4; anything else is ignored. 1 at first, and kept when another file is
     * loaded. The pitch changes with it, see AudioPlayer. No signal tells of it. */
    void SetPlaybackRate(double rate);
    [[nodiscard]] double GetPlaybackRate() const;
    /** Stops playback, which goes back to the start; the next playback is on this device. The selection still
     * shows, but the whole file is played until the user presses Stop or the selection changes. A device that
     * AudioPlayer does not accept leaves the former one in use until StopPlayback() or the next file: both ask
     * for it again. See SetDeviceChangeKeepsPlace(). */
    void SetAudioOutputDevice(const QAudioDevice& device);
    /** Percent; below 0 counts as 0, above 100 as 100. No signal tells of it. */
    void SetAudioPlayBackVolume(int volume);
    /** Percent, from 0 to 100; 100 at first. */
    [[nodiscard]] int GetAudioPlayBackVolume() const;
    /** No signal tells of it. */
    void SetAudioPlayBackMute(bool mute);
    [[nodiscard]] bool GetAudioPlayBackMute() const;

    /** From now on the controls are as large as the font of this widget needs, and their rows break where the
     * widget is too narrow for them; otherwise their sizes are fixed, and style sheets may count on them. The
     * widget's minimum width is then that of the narrowest arrangement. Cannot be taken back. */
    void UseFlexibleSizes();

    // Colours and marker of the waveform, see BGFXWaveformWidget. They show with the next repaint: call update()
    // on the widget to see them at once.
    void SetAudioPositionIcon(const QString& fileName);
    void SetAudioPositionMarkerColor(const QColor& color);
    void SetAudioSelectionColor(const QColor& color);
    void SetBackgroundColor(const QColor& color);
    void SetFrameColor(const QColor& color);
    void SetGridColor(const QColor& color);
    void SetScaleColor(const QColor& color);
    void SetWaveformColor(const QColor& color);
    // Further settings of BGFXWaveformWidget; it explains those that have no comment here.
    /** The position line moves as often as screens show a picture while the file plays, instead of with the
     * player's reports. Off at first. */
    void SetPositionMovesSmoothly(bool smoothly);
    void SetFollowsPosition(bool follows);
    void SetShowsPositionAtOnce(bool atOnce);
    void SetKeepsViewFilled(bool filled);
    void SetWheelZoomFactor(double factor);
    void SetLabelsFit(bool fit);
    void SetColorsFollowPalette(bool follow);
    void SetWaveformTakesFocus(bool takesFocus);

    /** Replaces all icons by this library's own, for dark windows or (as at first) for light ones. The settings
     * button gets `:/Resources/vantoraudioPreferences_night.svg` (or `_day.svg`), which the program embeds. */
    void SetNightIcons(bool night);
    /** Play and pause share one button, which shows what a click does. Mute and unmute share one, too, which shows
     * the present state. */
    void SetIconPlay(const QIcon& icon);
    void SetIconPause(const QIcon& icon);
    void SetIconStop(const QIcon& icon);
    void SetIconLoop(const QIcon& icon);
    void SetIconSettings(const QIcon& icon);
    void SetIconMute(const QIcon& icon);
    void SetIconUnmute(const QIcon& icon);
    void SetIconLoad(const QIcon& icon);
    void SetIconIncrement(const QIcon& icon);
    void SetIconDecrement(const QIcon& icon);

Q_SIGNALS:
    /** A file was loaded; `fileName` is the full path of its working copy. */
    void AudioFileChanged(const QString& fileName);

    /** The playback position in seconds. */
    void AudioPositionChanged(double position);
    /** A task went on: `progress` lies between `min` and `max`. Comes for every report of every task, in order,
     * and before what tells of the task's end. Only reports that the program has not fetched for 250 ms may be
     * left out, never the first or the last of a task. */
    void ProgressChanged(int progress, int min, int max, QString text);
    /** CreateSnippet() has written this file. */
    void CreateSnippetFinished(const QString& filePath);
    /** The selection is another one, whoever changed it: start and end in seconds, or (0, 0) for none. */
    void WaveFormSelectionChanged(std::pair<double, double> selectedSnippet);
    /** The user moved the slider, or clicked the mute button. */
    void AudioPlayBackVolumeChanged(int volume);
    void AudioPlayBackMuteChanged(bool mute);
    /** Nothing else happens then: the settings are the program's. */
    void SettingsButtonClicked();
    /** The visible range: x and width in seconds, height half the amplitude range. */
    void SceneRectChanged(const QRectF& sceneRect);
    /** Emit this to show another range, or connect it to the SceneRectChanged() of another view. Nothing in here
     * emits it. */
    void SceneRectChangeRequested(const QRectF& sceneRect);
    /** Writing a snippet or filtering a channel begins (true) or has ended, see IsBusy(). */
    void BusyChanged(bool state);

    // Of LoadFile(), with the path that it was given.
    void LoadStarted(const QString& path);
    void LoadFinished(const QString& path);
    /** `sentence` tells the user the reason and names the file. */
    void LoadFailed(const QString& path, vantoraudio::AudioEngine::AudioFileInfo::Problem problem,
                    const QString& sentence);
    void LoadCancelled(const QString& path);

    /** The user asks for a menu on the waveform, at a point of the screen; `time` is what is shown there. Needs
     * the interaction LeftButtonOnly and a file. */
    void ContextMenuRequested(const QPoint& globalPosition, double time);
    void LoopChanged(bool loop);
    /** The player cannot play the file, or has lost the sound for good: the reason as
     * QMediaPlayer::errorOccurred() has it, mostly in English. What is loaded stays. Comes from the event loop, so
     * that a slot may destroy the widget or load another file, and not when another file is there by then. */
    void PlaybackFailed(const QString& reason);
    /** The load button was pressed, and the program is to choose the file, see SetProgramChoosesFiles(). */
    void LoadRequested();

protected:
    /** The platform's key for selecting everything selects all that is visible, or with
     * Interaction::SelectBeyondView the whole file, also outside edit mode; Space plays and pauses. Every other
     * key goes on to the parent. */
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    /** Every failed step on a file comes here, with its code; Success when a file is missing that should have been
     * written. Does nothing by itself. */
    virtual void ErrorHandler(WavFile::AudioEngineReturnValue error);

private Q_SLOTS:
    void GetSamples(double startTime, double endTime, int stepSize);
    void OnNewSamples();
    void OnProgressChanged(int progress, int min, int max, const QString& text);

    void OnBtnPlayPauseClicked();
    void OnBtnStopClicked();
    void OnBtnLoopClicked();
    void OnBtnMuteClicked();
    void OnBtnLoadFileClicked();
    void OnHSliderVolumeValueChanged(int volume);
    void OnAudioStateChanged(QMediaPlayer::PlaybackState state);
    void OnAudioPositionChanged(qint64 milliseconds);
    void OnCurrentPositionEditingFinished();
    void OnWaveformAudioPositionChanged(double seconds);

    void OnBtnIncSelectionStartClicked();
    void OnBtnDecSelectionStartClicked();
    void OnBtnIncSelectionEndClicked();
    void OnBtnDecSelectionEndClicked();
    void OnSelectionStartEditingFinished();
    void OnSelectionEndEditingFinished();
    void OnWaveformSelectionChanged(const std::pair<double, double>& selection);

    void OnCmbboxChannelSelectorCurrentIndexChanged(int index);
    void OnChannelSelectionFinished(int index);
    void OnSnippetCreateFinished(int index);

private:
    friend class AudioPlayerActions;
    friend class AudioPlayerWidgetTestAccess;

    struct Internals;

    void SetupUi();
    void SetupAudioPlayerControls();
    void SetupSelectionsControls();
    void SetupHintSection();
    void ConnectSignals();
    void EnableAudioControls(bool canPlay);
    void SetBusy(bool busy);
    [[nodiscard]] static QString ConvertToDisplayTimeFormat(double seconds);
    [[nodiscard]] static double ConvertFromDisplayTimeFormat(const QString& text);

    QString m_originalAudioFilePath;
    QString m_snippetFilePath;
    QString m_filteredFilePath;
    WavFile::ChannelFormat m_previousChannel = WavFile::ChannelNone;
    BGFXWaveformWidget* m_waveformWidget = nullptr;
    QFutureWatcher<void> m_samplesWatcher;
    AudioPlayer* m_audioPlayer = nullptr;
    QIcon m_playIcon;
    QIcon m_pauseIcon;
    QIcon m_stopIcon;
    QIcon m_loopIcon;
    QIcon m_settingsIcon;
    QIcon m_muteIcon;
    QIcon m_unmuteIcon;
    QIcon m_loadIcon;
    /** The player has been given a selection that is not empty. */
    bool m_hasSelection = false;
    std::unique_ptr<QRegularExpressionValidator> m_timeValidator;
    QAudioDevice m_audioOutputDevice;
    QString m_writableDirectoryPath;
    bool m_busy = false;
    QFutureWatcher<WavFile::AudioEngineReturnValue> m_snippetWatcher;
    QFutureWatcher<WavFile::AudioEngineReturnValue> m_channelFilterWatcher;

    std::unique_ptr<Internals> m_internals;
};

} // namespace vantoraudio::vantorAudioEngine::UI
