#include <vantorAudioEngine/Version.h>
#include <vantorAudioEngine/WavFile.h>

#include <cstdio>

int main()
{
    WavFile file(nullptr);
    std::puts(qPrintable(vantoraudio::AudioEngine::libVersionString()));
    return file.Open(QStringLiteral("no such file.wav")) == WavFile::ErrorOpenFile ? 0 : 1;
}
