#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QString>

/**
 * Records what a sink of the sound server plays, 16-bit stereo at 44100 Hz, and judges its latest fifth of a
 * second. Needs a running event loop, as QTRY_VERIFY and QSignalSpy::wait() run one.
 */
class SoundRecording
{
public:
    enum Channel
    {
        Left = 0,
        Right = 1
    };

    explicit SoundRecording(const QString& sink);
    ~SoundRecording();
    Q_DISABLE_COPY_MOVE(SoundRecording)

    /** Forgets what was heard so far. Every judgement is false or 0 until enough is heard again. */
    void Clear();

    bool HasEnough() const;

    /** Enough was heard, and none of it is louder than a rounding error. */
    bool IsSilent() const;

    /** The loudest frequency in Hz, in steps of 5 Hz from 50 to 2000; 0 when silent. */
    int Frequency(Channel channel) const;

    /** The amplitude of a tone, 1.0 being full scale. */
    double Amplitude(Channel channel, int frequency) const;

private:
    QProcess m_recorder;
    QByteArray m_heard;
};
