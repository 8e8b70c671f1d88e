#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Version.h>
#include <vantorAudioEngine/WavFile.h>

#include <cstdio>

int main()
{
    WavFile file(nullptr);
    std::puts(qPrintable(vantoraudio::AudioEngine::libVersionString()));
    const QString missing = QStringLiteral("no such file.wav");
    const auto result =
        vantoraudio::AudioEngine::AudioImporter::ImportNow(missing, QStringLiteral("new file.wav"));
    return file.Open(missing) == WavFile::ErrorOpenFile && result.Code() == WavFile::ErrorOpenFile ? 0 : 1;
}
