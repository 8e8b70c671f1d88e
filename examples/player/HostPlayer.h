#pragma once

#include <vantorAudioEngine/AudioPlayerWidget.h>

/** The library's player, whose failures this program tells in sentences. */
class HostPlayer : public vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget
{
    Q_OBJECT

public:
    using AudioPlayerWidget::AudioPlayerWidget;

Q_SIGNALS:
    void Failed(WavFile::AudioEngineReturnValue error);

protected:
    void ErrorHandler(WavFile::AudioEngineReturnValue error) override { Q_EMIT Failed(error); }
};
