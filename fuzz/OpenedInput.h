#pragma once

#include "fuzz/Fuzzing.h"

#include <vantorAudioEngine/WavFile.h>

namespace Fuzzing {

/** The input as an open WAV file, with a channel of its choice. What its header gave is left to it: callers may go
 *  on after an error. */
class OpenedInput
{
public:
    explicit OpenedInput(Input& input)
    {
        constexpr int oneTooMany = WavFile::ChannelLeftRight + 1;
        file.SetLargeFiles(input.ConsumeBool());
        file.SetSelectedChannel(WavFile::ChannelFormat(input.ConsumeIntegralInRange(0, oneTooMany)));
    }
    ~OpenedInput()
    {
        file.close();
        Folder::Get().Clear();
    }
    Q_DISABLE_COPY_MOVE(OpenedInput)

    /** Call it last: it takes all bytes that are left. */
    void Open(Input& input)
    {
        bytes = input.AllBytes();
        result = file.Open(Folder::Get().Write(QStringLiteral("input.wav"), bytes));
    }

    /** Nobody writes into the source. */
    void RequireUntouched() const { Require(Folder::Get().Read(QStringLiteral("input.wav")) == bytes); }

    QByteArray bytes;
    WavFile file;
    WavFile::AudioEngineReturnValue result = WavFile::Success;
};

} // namespace Fuzzing
