#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerActions.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Decoder.h>
#include <vantorAudioEngine/HardwareManager.h>
#include <vantorAudioEngine/Version.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtWidgets/QApplication>

#include <cstdio>

using namespace vantoraudio::AudioEngine;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

int failures = 0;

void Check(bool holds, const char* what)
{
    if (!holds) {
        std::printf("failed: %s\n", what);
        ++failures;
    }
}

void UseTheVersion()
{
    int patch = -1;
    int minor = -1;
    int major = -1;
    libVersion(patch, minor, major);
    const QString version = libVersionString();
    Check(version == QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(patch), "the version");
    std::puts(qPrintable(version));
}

void UseTheEngine()
{
    const QString missing = QStringLiteral("no such file.wav");
    const QString made = QStringLiteral("made.wav");
    WavFile file;
    Check(file.Open(missing) == WavFile::ErrorOpenFile, "WavFile");
    Check(!TextOf(WavFile::ErrorOpenFile).isEmpty(), "the text of a result");
    Check(Decoder::Convert(missing, made, 44100) != WavFile::Success, "Decoder::Convert");
    Check(Decoder::ConvertToFloat(missing, made, 44100) != WavFile::Success, "Decoder::ConvertToFloat");
    Check(Decoder::GetDuration(missing) == 0, "Decoder::GetDuration");
    Check(AudioFileInfo::Probe(missing).GetProblem() != AudioFileInfo::Problem::None, "AudioFileInfo");
    Check(AudioImporter::ImportNow(missing, made).Code() == WavFile::ErrorOpenFile, "AudioImporter");
}

void UseThePlayback()
{
    AudioPlayer player;
    player.SetVolume(40);
    Check(player.Volume() == 40, "AudioPlayer");
    const HardwareManager devices;
    Check(devices.metaObject()->indexOfSignal("AudioDeviceListChanged(QList<QAudioDevice>)") >= 0,
          "HardwareManager");
}

void UseTheWidgets()
{
    Check(BGFXWaveformWidget::FormatToTime(61.5) != BGFXWaveformWidget::FormatToTime(1.5), "the time text");
    BGFXWaveformWidget waveform;
    waveform.SetDelay(0.25);
    Check(waveform.GetDelay() == 0.25, "BGFXWaveformWidget");
    waveform.resize(300, 100);
    Check(!waveform.grab().isNull(), "a picture of the waveform");
    AudioPlayerWidget widget;
    widget.SetDelay(0.5);
    Check(widget.GetDelay() == 0.5, "AudioPlayerWidget");
    const auto* actions = new AudioPlayerActions(&widget);
    Check(actions->All(AudioPlayerActions::Playback).size() == 10, "AudioPlayerActions");
}

} // namespace

/** Uses every exported class, so that none lacks its header or its symbols in the installed package. */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    UseTheVersion();
    UseTheEngine();
    UseThePlayback();
    UseTheWidgets();
    return failures;
}
