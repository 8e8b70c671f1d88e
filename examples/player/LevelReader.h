#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QList>

class HostPlayer;

/** Reads how loud a player's file is at a moment. */
class LevelReader
{
public:
    /** The highest sample of each channel that is played, in the moment that ends at `seconds`: the last 50 ms, or
     *  more where the call before this one ended up to 200 ms earlier, so that nothing in between is left out. Of
     *  silence, and behind the end of the file, 0. Empty when the file cannot be read. */
    QList<double> PeaksBefore(double seconds, const HostPlayer& player);
    /** Lets go of the file until the next call. */
    void Close();

private:
    double PeakOf(WavFile::ChannelFormat channel, double start, double end);

    WavFile m_file;
    /** Where the last moment ended. */
    double m_readTo = 0.0;
};
