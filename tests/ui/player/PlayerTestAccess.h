#pragma once

#include "ui/player/Internals.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QList>

namespace vantoraudio::vantorAudioEngine::UI {

/** Reaches what tests look into. */
class AudioPlayerWidgetTestAccess
{
public:
    static const auto& Controls(const AudioPlayerWidget& widget) { return widget.m_internals->controls; }
    static WavFile& File(AudioPlayerWidget& widget) { return widget.m_internals->loaded.File(); }
    static AudioPlayer& Player(AudioPlayerWidget& widget) { return *widget.m_audioPlayer; }
    static BGFXWaveformWidget& Waveform(AudioPlayerWidget& widget) { return *widget.m_waveformWidget; }
    /** No report of progress gets old, however slow this machine is. Not while a task runs. */
    static void StopClock(AudioPlayerWidget& widget)
    {
        widget.m_internals->loaded.Progress().m_clock = [] { return qint64(0); };
    }
    /** As a task of the pool does when it has its result, shortly before it has ended. */
    static void LeaveSnippetEnded(AudioPlayerWidget& widget)
    {
        widget.m_internals->loaded.Progress().Leave(WorkingFile::SnippetEnded);
    }
    static bool HasSelection(const AudioPlayerWidget& widget) { return widget.m_hasSelection; }
    static QString FilteredFilePath(const AudioPlayerWidget& widget) { return widget.m_filteredFilePath; }
    static QString SnippetFilePath(const AudioPlayerWidget& widget) { return widget.m_snippetFilePath; }
    static void SetBusy(AudioPlayerWidget& widget, bool busy) { widget.SetBusy(busy); }
    static QString ToText(double seconds) { return AudioPlayerWidget::ConvertToDisplayTimeFormat(seconds); }
    static double FromText(const QString& text) { return AudioPlayerWidget::ConvertFromDisplayTimeFormat(text); }
    static bool IsReadingSamples(const AudioPlayerWidget& widget) { return widget.m_samplesWatcher.isRunning(); }
};

/** Writes down its errors. */
class RecordingPlayerWidget : public AudioPlayerWidget
{
public:
    using AudioPlayerWidget::AudioPlayerWidget;

    QList<WavFile::AudioEngineReturnValue> errors;

protected:
    void ErrorHandler(WavFile::AudioEngineReturnValue error) override { errors.append(error); }
};

} // namespace vantoraudio::vantorAudioEngine::UI
