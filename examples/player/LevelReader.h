#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QList>

class HostPlayer;

/** Reads how loud a player's file is at a moment. */
class LevelReader
{
public:
    /** The highest sample of each channel that is played, in the moment of 50 ms that ends at `seconds`; of
     *  silence, and behind the end of the file, 0. Empty when the file cannot be read. */
    QList<double> PeaksBefore(double seconds, const HostPlayer& player);
    /** Lets go of the file until the next call. */
    void Close();

private:
    double PeakOf(WavFile::ChannelFormat channel, double seconds);

    WavFile m_file;
};
