#include "tests/support/AudioPrograms.h"
#include "tests/support/Spectrum.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QThreadPool>
#include <QtTest/QTest>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace Qt::Literals::StringLiterals;
using namespace AudioPrograms;
using namespace vantoraudio::AudioEngine;

namespace {

/** One kind of file, and what the imported file is to be like. */
struct Kind
{
    const char* name;
    const char* file;
    /** Lines of the shell, in the folder of the sources. `f` is ffmpeg, `$o` the file. */
    const char* recipe;
    int rate = 44100;
    int channels = 2;
    /** Where a stream changes its rate, the resampler's edges are not those of ffmpeg, which lets go of what is
     * left in its own. So many frames in one place may differ then. */
    int edge = 0;
};

/** The files that all others are made of: a second of tones under noise, different in every channel. */
constexpr const char* sources = R"sh(
    t() { echo "0.3*sin(2*PI*$1*t)+0.1*sin(2*PI*2000*t*t)+0.05*(random($2)-0.5)"; }
    m() { f -f lavfi -i "aevalsrc=$2:s=$3:d=1" -c:a pcm_f32le $1.wav; }
    m mono "$(t 440 0)" 44100
    m stereo "$(t 440 0)|$(t 880 1)" 44100
    m stereo48 "$(t 500 0)|$(t 1000 1)" 48000
    m mono48 "$(t 700 0)" 48000
    m stereo96 "$(t 500 0)|$(t 1000 1)" 96000
    m surround "$(t 300 0)|$(t 400 1)|$(t 500 2)|$(t 60 3)|$(t 700 4)|$(t 800 5):c=5.1" 48000
    m eight "$(t 300 0)|$(t 400 1)|$(t 500 2)|$(t 60 3)|$(t 700 4)|$(t 800 5)|$(t 900 6)|$(t 990 7):c=7.1" 48000
    f -i stereo.wav -c:a pcm_s16le stereo16.wav
    f -i mono.wav -c:a pcm_s16le mono16.wav
    f -i stereo48.wav -c:a pcm_s16le stereo48-16.wav
)sh";

constexpr Kind kinds[] = {
    // WAV and its relatives
    {"WAV, 8 bit", "u8.wav", "f -i stereo.wav -c:a pcm_u8 $o"},
    {"WAV, 16 bit", "s16.wav", "f -i stereo.wav -c:a pcm_s16le $o"},
    {"WAV, 24 bit", "s24.wav", "f -i stereo.wav -c:a pcm_s24le $o"},
    {"WAV, 32 bit", "s32.wav", "f -i stereo.wav -c:a pcm_s32le $o"},
    {"WAV, 64 bit", "s64.wav", "f -i stereo.wav -c:a pcm_s64le $o"},
    {"WAV, float", "f32.wav", "f -i stereo.wav -c:a pcm_f32le $o"},
    {"WAV, 64-bit float", "f64.wav", "f -i stereo.wav -c:a pcm_f64le $o"},
    {"WAV, float beyond full scale", "loud.wav", "f -i stereo.wav -af volume=volume=8:precision=float $o"},
    {"WAV, A-law", "alaw.wav", "f -i stereo.wav -c:a pcm_alaw $o"},
    {"WAV, mu-law", "mulaw.wav", "f -i stereo.wav -c:a pcm_mulaw $o"},
    {"WAV, ADPCM of Microsoft", "adpcm-ms.wav", "f -i stereo.wav -c:a adpcm_ms $o"},
    {"WAV, ADPCM of the IMA", "adpcm-ima.wav", "f -i stereo.wav -c:a adpcm_ima_wav $o"},
    {"WAV, ADPCM of Yamaha", "adpcm-yamaha.wav", "f -i stereo.wav -c:a adpcm_yamaha $o"},
    {"WAV, GSM", "gsm.wav", "f -i mono.wav -ar 8000 -c:a libgsm_ms $o", 8000, 1},
    {"WAV, G.726", "g726.wav", "f -i mono.wav -ar 8000 -c:a g726 $o", 8000, 1},
    {"WAV, MP3 inside", "mp3.wav", "f -i stereo.wav -c:a libmp3lame $o"},
    {"WAV, layer 2 inside", "mp2.wav", "f -i stereo.wav -c:a mp2 $o"},
    {"WAV, AC-3 inside", "ac3.wav", "f -i stereo48.wav -c:a ac3 $o", 48000},
    {"WAV, mono", "mono.wav", "true", 44100, 1},
    {"WAV, 5.1", "surround24.wav", "f -i surround.wav -c:a pcm_s24le $o", 48000},
    {"WAV, 8 channels", "eight.wav", "true", 48000},
    {"WAV, 3 channels", "three.wav", "f -i surround.wav -af 'pan=3.0|c0=c0|c1=c1|c2=c2' $o", 48000},
    {"WAV, 4 channels without names", "four.wav", "sox -M -v 0.9 stereo16.wav -v 0.7 stereo16.wav -t wavpcm $o"},
    // Only of 8 bit: FFmpeg does not turn the bytes of longer samples.
    {"WAV, big-endian, 8 bit", "rifx.wav", "sox -R stereo16.wav -B -b 8 -t wav $o"},
    {"WAV, chunks of odd length with pad bytes", "odd.wav",
     "{ head -c 12 stereo16.wav; printf 'junk\\5\\0\\0\\0abcde\\0'; tail -c +13 stereo16.wav; "
     "printf 'more\\3\\0\\0\\0abc\\0'; } >$o"},
    {"WAV, from a pipe, sizes all ones", "pipe.wav", "f -i stereo.wav -c:a pcm_s24le -f wav - | cat >$o"},
    {"WAV, size of the data 0", "zero.wav",
     "f -i stereo.wav -bitexact -c:a pcm_s16le $o; printf '\\0\\0\\0\\0' | dd of=$o bs=1 seek=40 conv=notrunc "
     "status=none"},
    {"RF64", "rf64.wav", "f -i stereo.wav -rf64 always $o"},
    {"W64", "wave.w64", "f -i stereo.wav -c:a pcm_s24le $o"},
    {"AIFF", "a.aiff", "f -i stereo.wav -c:a pcm_s24be $o"},
    {"AIFF-C, little-endian", "sowt.aiff", "f -i stereo.wav -c:a pcm_s16le $o"},
    {"AIFF-C, float", "fl32.aifc", "f -i stereo.wav -c:a pcm_f32be -f aiff $o"},
    {"AU", "a.au", "f -i stereo.wav -c:a pcm_s16be $o"},
    {"AU, mu-law of 8 kHz", "mulaw.au", "f -i mono.wav -ar 8000 -c:a pcm_mulaw $o", 8000, 1},
    {"CAF", "a.caf", "f -i stereo.wav -c:a pcm_s24le $o"},
    {"CAF, ALAC", "alac.caf", "f -i stereo.wav -c:a alac $o"},
    {"VOC", "a.voc", "f -i mono.wav -c:a pcm_s16le $o", 44100, 1},
    {"SoX's own", "a.sox", "sox stereo16.wav $o"},
    {"NIST Sphere", "a.sph", "sox stereo16.wav $o"},
    {"Amiga's 8SVX", "a.8svx", "sox mono16.wav $o", 44100, 1},

    // MPEG layers 2 and 3
    {"MP3, constant rate", "cbr.mp3", "lame --quiet -b 128 -m s stereo16.wav $o"},
    {"MP3, variable rate", "vbr.mp3", "lame --quiet -V 2 stereo16.wav $o"},
    {"MP3, joint stereo", "joint.mp3", "lame --quiet -b 128 -m j stereo16.wav $o"},
    {"MP3, mono", "mono.mp3", "lame --quiet mono16.wav $o", 44100, 1},
    {"MP3, 48 kHz", "48.mp3", "lame --quiet stereo48-16.wav $o", 48000},
    {"MP3, 22.05 kHz, MPEG-2", "22.mp3", "lame --quiet --resample 22.05 stereo16.wav $o", 22050},
    {"MP3, 8 kHz, MPEG-2.5", "8.mp3", "lame --quiet --resample 8 mono16.wav $o", 8000, 1},
    {"MP3, without Xing header", "bare.mp3", "lame --quiet -t stereo16.wav $o"},
    {"MP3, ID3 and cover", "cover.mp3",
     "f -f lavfi -i testsrc=d=1:r=1:s=64x64 -i stereo.wav -map 1 -map 0 -id3v2_version 3 -write_id3v1 1 "
     "-metadata title=Song $o"},
    {"MP3, in Matroska", "mp3.mkv", "f -i stereo.wav -c:a libmp3lame $o"},
    {"MP3, in MP4", "mp3.mp4", "f -i stereo.wav -c:a libmp3lame $o"},
    {"MP3, in AVI", "mp3.avi", "f -f lavfi -i testsrc=d=1:s=64x64 -i stereo.wav -c:a libmp3lame $o"},
    {"Layer 2", "a.mp2", "f -i stereo.wav -c:a mp2 $o"},
    {"Layer 2 named MP3", "layer2.mp3", "f -i stereo.wav -c:a mp2 -f mp2 $o"},
    {"Layer 2, in a transport stream", "a.ts", "f -i stereo48.wav -c:a mp2 $o", 48000},
    {"Layer 2, in a program stream", "a.mpg", "f -i stereo48.wav -c:a mp2 $o", 48000},

    // Xiph's
    {"Ogg Vorbis", "a.ogg", "f -i stereo.wav -c:a libvorbis $o"},
    {"Ogg Vorbis, mono", "mono.ogg", "f -i mono.wav -c:a libvorbis $o", 44100, 1},
    {"Ogg Vorbis, 5.1", "surround.ogg", "f -i surround.wav -c:a libvorbis $o", 48000},
    {"Ogg Vorbis, two streams joined", "joined.ogg",
     "f -i stereo.wav -c:a libvorbis -serial_offset 1 one.ogg; f -i stereo.wav -c:a libvorbis -serial_offset 2 "
     "two.ogg; cat one.ogg two.ogg >$o"},
    {"Ogg Vorbis, stereo, then mono", "drop.ogg",
     "f -i stereo.wav -c:a libvorbis -serial_offset 1 drop1.ogg; f -i mono.wav -c:a libvorbis -serial_offset 2 "
     "drop2.ogg; cat drop1.ogg drop2.ogg >$o"},
    {"Ogg FLAC", "flac.ogg", "f -i stereo.wav -c:a flac $o"},
    {"Ogg Speex", "a.spx", "f -i mono.wav -ar 16000 -c:a libspeex $o", 16000, 1},
    {"Opus", "a.opus", "f -i stereo48.wav -c:a libopus $o", 48000},
    {"Opus, mono", "mono.opus", "f -i mono.wav -c:a libopus $o", 48000, 1},
    {"Opus, 5.1", "surround.opus", "f -i surround.wav -c:a libopus -b:a 256k $o", 48000},
    {"Opus, in WebM", "a.webm", "f -i stereo48.wav -c:a libopus $o", 48000},
    {"FLAC, 16 bit", "s16.flac", "f -i stereo16.wav $o"},
    {"FLAC, 24 bit", "s24.flac", "f -i stereo.wav -sample_fmt s32 $o"},
    {"FLAC, 8 bit", "u8.flac", "sox stereo16.wav -b 8 $o"},
    {"FLAC, mono", "mono.flac", "f -i mono.wav $o", 44100, 1},
    {"FLAC, 5.1", "surround.flac", "f -i surround.wav -sample_fmt s32 $o", 48000},
    {"FLAC, blocks of 32768", "blocks.flac", "f -i stereo.wav -frame_size 32768 -strict experimental $o"},
    {"FLAC named WAV", "flac.wav", "f -i stereo.wav -c:a flac -f flac $o"},
    {"FLAC behind an ID3 tag", "id3.flac",
     "f -i stereo.wav tagless.flac; { printf 'ID3\\3\\0\\0\\0\\0\\0\\12'; head -c 10 /dev/zero; cat tagless.flac; "
     "} >$o"},

    // MPEG-4 and films
    {"AAC, ADTS", "a.aac", "f -i stereo.wav -c:a aac $o"},
    {"AAC, LATM", "a.latm", "f -i stereo.wav -c:a aac -f latm $o"},
    {"AAC, 5.1", "surround.m4a", "f -i surround.wav -c:a aac $o", 48000},
    {"AAC, ADTS, stereo, then mono", "drop.aac",
     "f -i stereo.wav -c:a aac drop1.aac; f -i mono.wav -c:a aac drop2.aac; cat drop1.aac drop2.aac >$o"},
    {"AAC, ADTS, mono, then stereo", "rise.aac",
     "f -i mono.wav -c:a aac rise1.aac; f -i stereo.wav -c:a aac rise2.aac; cat rise1.aac rise2.aac >$o", 44100,
     1},
    {"AAC, in M4A with an edit list", "a.m4a", "f -i stereo.wav -c:a aac $o"},
    {"AAC, in M4A, begun later by an edit list", "edit.m4a",
     "f -i stereo.wav -c:a aac long.m4a; f -ss 0.3 -i long.m4a -c copy $o"},
    {"ALAC, in M4A", "alac.m4a", "f -i stereo.wav -c:a alac $o"},
    {"ALAC, 24 bit of 96 kHz", "alac96.m4a", "f -i stereo96.wav -c:a alac -sample_fmt s32p $o", 96000},
    {"film, MPEG-4 and AAC", "film.mp4", "f -f lavfi -i testsrc=d=1:s=64x64 -i stereo.wav -c:v mpeg4 -c:a aac $o"},
    {"film, two sounds, the second the usual one", "two.mkv",
     "f -i surround.wav -i stereo.wav -map 0 -map 1 -c:a flac -disposition:0 0 -disposition:1 default $o"},
    {"film, two sounds, none the usual one", "neither.mkv",
     "f -i stereo48.wav -i surround.wav -map 0 -map 1 -c:a flac -disposition:0 0 -disposition:1 0 $o", 48000},
    {"film, two sounds, the first of more bits", "bits.ts",
     "f -i mono.wav -i stereo.wav -map 0 -map 1 -c:a mp2 -b:a:0 192k -b:a:1 96k $o"},
    {"PCM, in Matroska", "pcm.mkv", "f -i stereo.wav -c:a pcm_s24le $o"},
    {"PCM, in QuickTime", "pcm.mov", "f -i stereo.wav -c:a pcm_s24be $o"},
    {"PCM of Blu-ray, in a transport stream", "a.m2ts", "f -i stereo48.wav -c:a pcm_bluray $o", 48000},
    {"AAC, in FLV", "a.flv", "f -i stereo.wav -c:a aac $o"},
    {"ADPCM, in FLV", "adpcm.flv", "f -i stereo.wav -c:a adpcm_swf $o"},
    {"Nellymoser, in FLV", "nelly.flv", "f -i mono.wav -c:a nellymoser $o", 44100, 1},
    {"ADPCM, in QuickTime", "ima.mov", "f -i stereo.wav -c:a adpcm_ima_qt $o"},

    // Dolby's and DTS
    {"AC-3, 2.0", "a.ac3", "f -i stereo48.wav -c:a ac3 $o", 48000},
    {"AC-3, 5.1", "surround.ac3", "f -i surround.wav -c:a ac3 $o", 48000},
    {"AC-3, 5.1, then 2.0", "drop.ac3",
     "f -i surround.wav -c:a ac3 drop1.ac3; f -i stereo48.wav -c:a ac3 drop2.ac3; cat drop1.ac3 drop2.ac3 >$o",
     48000},
    {"E-AC-3, 5.1", "a.eac3", "f -i surround.wav -c:a eac3 $o", 48000},
    {"DTS, 5.1", "a.dts", "f -i surround.wav -c:a dca -strict -2 -b:a 1411k $o", 48000},
    {"TrueHD, 5.1", "a.thd", "f -i surround.wav -c:a truehd -strict -2 $o", 48000},

    // Others
    {"WMA, version 1", "v1.wma", "f -i stereo.wav -c:a wmav1 $o"},
    {"WMA, version 2", "v2.wma", "f -i stereo.wav -c:a wmav2 $o"},
    {"WavPack", "a.wv", "f -i stereo16.wav $o"},
    {"WavPack, float", "float.wv", "f -i stereo.wav -sample_fmt fltp $o"},
    {"WavPack, 96 kHz", "96.wv", "f -i stereo96.wav -sample_fmt s32p $o", 96000},
    {"TTA", "a.tta", "f -i stereo16.wav $o"},
    {"TTA, 96 kHz", "96.tta", "f -i stereo96.wav -sample_fmt s32 $o", 96000},
    {"G.722", "a.g722", "f -i mono.wav -ar 16000 -c:a g722 $o", 16000, 1},
    {"GSM", "a.gsm", "f -i mono.wav -ar 8000 -c:a libgsm $o", 8000, 1},
    {"G.723.1, in Matroska", "g723.mkv", "f -i mono.wav -ar 8000 -b:a 6300 -c:a g723_1 $o", 8000, 1},
    {"RealAudio", "a.rm", "f -i mono.wav -ar 8000 -c:a real_144 $o", 8000, 1},
    {"ADX", "a.adx", "f -i stereo.wav $o"},
    {"SBC", "a.sbc", "f -i stereo.wav $o"},

    // Rates
    {"WAV, 8 kHz", "8000.wav", "f -i stereo.wav -ar 8000 -c:a pcm_s24le $o", 8000},
    {"WAV, 11.025 kHz", "11025.wav", "f -i stereo.wav -ar 11025 -c:a pcm_s24le $o", 11025},
    {"WAV, 16 kHz", "16000.wav", "f -i stereo.wav -ar 16000 -c:a pcm_s24le $o", 16000},
    {"WAV, 22.05 kHz", "22050.wav", "f -i stereo.wav -ar 22050 -c:a pcm_s24le $o", 22050},
    {"WAV, 32 kHz", "32000.wav", "f -i stereo.wav -ar 32000 -c:a pcm_s24le $o", 32000},
    {"WAV, 88.2 kHz", "88200.wav", "f -i stereo.wav -ar 88200 -c:a pcm_s24le $o", 88200},
    {"WAV, 96 kHz", "96000.wav", "f -i stereo.wav -ar 96000 -c:a pcm_s24le $o", 96000},
    {"WAV, 176.4 kHz", "176400.wav", "f -i stereo.wav -ar 176400 -c:a pcm_s24le $o", 176400},
    {"WAV, 192 kHz", "192000.wav", "f -i stereo.wav -ar 192000 -c:a pcm_s24le $o", 192000},
    {"FLAC, 8 kHz", "8000.flac", "f -i stereo.wav -ar 8000 -sample_fmt s32 $o", 8000},
    {"FLAC, 22.05 kHz", "22050.flac", "f -i stereo.wav -ar 22050 -sample_fmt s32 $o", 22050},
    {"FLAC, 88.2 kHz", "88200.flac", "f -i stereo.wav -ar 88200 -sample_fmt s32 $o", 88200},
    {"FLAC, 96 kHz", "96000.flac", "f -i stereo.wav -ar 96000 -sample_fmt s32 $o", 96000},
    {"FLAC, 192 kHz", "192000.flac", "f -i stereo.wav -ar 192000 -sample_fmt s32 $o", 192000},

    // Rates that change on the way
    // Long, because FFmpeg takes the rate of the last part that it sees while it looks ahead.
    {"MP3, 44.1 kHz, then 48 kHz", "rates.mp3",
     "f -stream_loop 7 -i stereo16.wav r1.wav; lame --quiet -t r1.wav r1.mp3; lame --quiet -t stereo48-16.wav "
     "r2.mp3; "
     "cat r1.mp3 r2.mp3 >$o",
     44100, 2, 64},
    {"MP3, stereo, then mono", "drop.mp3",
     "lame --quiet stereo16.wav d1.mp3; lame --quiet mono16.wav d2.mp3; cat d1.mp3 d2.mp3 >$o"},
    {"AAC, ADTS, 44.1 kHz, then 48 kHz and mono", "rates.aac",
     "f -i stereo.wav -c:a aac r1.aac; f -i mono48.wav -c:a aac r2.aac; cat r1.aac r2.aac >$o", 44100, 2, 64},

    // Damage
    {"MP3, cut off", "cut.mp3", "lame --quiet stereo16.wav c.mp3; head -c 9001 c.mp3 >$o"},
    {"FLAC, cut off", "cut.flac", "f -i stereo.wav c.flac; head -c 50001 c.flac >$o"},
    {"Ogg Vorbis, cut off", "cut.ogg",
     "f -i stereo.wav -c:a libvorbis -page_duration 100000 c.ogg; head -c 9001 c.ogg >$o"},
    {"WAV, cut off within a frame", "cut.wav", "head -c 90003 stereo16.wav >$o"},
    {"AAC, cut off", "cut.aac", "f -i stereo.wav -c:a aac c.aac; head -c 9001 c.aac >$o"},
    {"MP3, damaged in the middle", "damaged.mp3",
     "lame --quiet stereo16.wav $o; head -c 900 stereo.wav | dd of=$o bs=1 seek=7000 conv=notrunc status=none"},
    {"FLAC, damaged in the middle", "damaged.flac",
     "f -i stereo.wav $o; head -c 900 mono.wav | dd of=$o bs=1 seek=50000 conv=notrunc status=none"},
    {"Ogg Vorbis, damaged in the middle", "damaged.ogg",
     "f -i stereo.wav -c:a libvorbis -page_duration 100000 $o; head -c 900 mono.wav | dd of=$o bs=1 seek=9000 "
     "conv=notrunc status=none"},
    {"AAC, damaged in the middle", "damaged.aac",
     "f -i stereo.wav -c:a aac $o; head -c 900 mono.wav | dd of=$o bs=1 seek=7000 conv=notrunc status=none"},
    {"AC-3, damaged in the middle", "damaged.ac3",
     "f -i stereo48.wav -c:a ac3 $o; head -c 900 mono.wav | dd of=$o bs=1 seek=9000 conv=notrunc status=none",
     48000},
};

/** Frames of one channel count. */
template<typename Sample>
struct Audio
{
    QList<Sample> samples;
    int channels = 0;

    qsizetype FrameCount() const { return samples.size() / channels; }
};

template<typename Sample>
QList<Sample> SamplesOf(const QByteArray& bytes)
{
    QList<Sample> samples(bytes.size() / qsizetype(sizeof(Sample)));
    std::copy_n(bytes.begin(), samples.size() * qsizetype(sizeof(Sample)),
                reinterpret_cast<char*>(samples.data()));
    return samples;
}

/** Nothing, with one channel, when that is no such file. */
template<typename Sample>
Audio<Sample> ReadWav(const QString& path, QAudioFormat::SampleFormat format)
{
    WavFile file;
    if (file.Open(path) != WavFile::Success || file.GetFileFormat().sampleFormat() != format) {
        return {{}, 1};
    }
    file.seek(file.GetDataOffset());
    return {SamplesOf<Sample>(file.read(file.GetDataLength())), file.GetFileFormat().channelCount()};
}

/** How many frames from the start on, or with -1 from the end back, are the same in both. */
qsizetype EqualFrames(const Audio<float>& ours, const Audio<double>& theirs, int direction)
{
    constexpr double tolerance = 1e-4;
    const qsizetype count = std::min(ours.samples.size(), theirs.samples.size());
    for (qsizetype i = 0; i < count; ++i) {
        const double our = ours.samples[direction > 0 ? i : ours.samples.size() - 1 - i];
        const double their = theirs.samples[direction > 0 ? i : theirs.samples.size() - 1 - i];
        if (!(std::abs(our - their) <= tolerance)) {
            return i / ours.channels;
        }
    }
    return count / ours.channels;
}

/** Empty when they are the same but for `edge` frames in one place. */
QString Difference(const Audio<float>& ours, const Audio<double>& theirs, int edge)
{
    const qsizetype our = ours.FrameCount();
    const qsizetype their = theirs.FrameCount();
    const qsizetype start = EqualFrames(ours, theirs, 1);
    const qsizetype end = edge > 0 ? EqualFrames(ours, theirs, -1) : 0;
    const bool isSame = std::min(our, their) - start - end <= edge && std::abs(our - their) <= std::max(edge, 1);
    return isSame ? QString()
                  : u"%1 frames, ffmpeg %2; the first %3 and the last %4 are the same"_s.arg(our)
                        .arg(their)
                        .arg(start)
                        .arg(end);
}

/** A float WAV file with a sine of one channel. */
QByteArray SineFile(int rate, double frequency)
{
    WavTest::WavBytes wav{.formatTag = 3, .sampleRate = quint32(rate), .bits = 32};
    for (int i = 0; i < rate; ++i) {
        wav.data += WavTest::LittleEndian(float(0.5 * std::sin(2.0 * std::numbers::pi * frequency * i / rate)));
    }
    return wav.Build();
}

} // namespace

/** Files of every kind, held sample by sample against what the ffmpeg program makes of them. */
class TestAudioImporterFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void importsTheSamplesThatFFmpegDecodes_data();
    void importsTheSamplesThatFFmpegDecodes();
    void resamplesAsFFmpegDoes_data();
    void resamplesAsFFmpegDoes();
    void addsNothingAudibleWhenItResamples_data();
    void addsNothingAudibleWhenItResamples();
    void writesTheIntegersThatFFmpegWrites_data();
    void writesTheIntegersThatFFmpegWrites();
    void writesFloatsWhenTheChoiceIsLeftToIt();
    void averagesManyChannelsWithoutNames_data();
    void averagesManyChannelsWithoutNames();
    void takesNoFileOfStatedLengthForAnEmptyOne();

private:
    bool Run(const QString& script, const QString& file) const;
    bool Make(const QString& file, const QString& recipe, int rate, int channels) const;
    Audio<double> DecodedByFFmpeg(const QString& file, int channels) const;
    ImportResult Imported(const QString& file, const ImportOptions& options) const;
    QString Out() const { return m_files.Path(u"out.wav"_s); }

    const TemporaryFiles m_files;
};

bool TestAudioImporterFormats::Run(const QString& script, const QString& file) const
{
    const QString prelude = u"set -e; cd \"$1\"; o=$2; f() { ffmpeg -v error -nostdin -y \"$@\"; }\n"_s;
    return Succeeds(u"sh"_s, {u"-c"_s, prelude + script, u"sh"_s, m_files.Path({}), file});
}

/** The file, and beside it what ffmpeg decodes. */
bool TestAudioImporterFormats::Make(const QString& file, const QString& recipe, int rate, int channels) const
{
    const QString decode = u"\nffmpeg -v fatal -nostdin -i $o -ar %1 -ac %2 -f f64le $o.f64"_s;
    return Run(recipe + decode.arg(rate).arg(channels), file);
}

Audio<double> TestAudioImporterFormats::DecodedByFFmpeg(const QString& file, int channels) const
{
    return {SamplesOf<double>(TemporaryFiles::Read(m_files.Path(file + u".f64"_s))), channels};
}

ImportResult TestAudioImporterFormats::Imported(const QString& file, const ImportOptions& options) const
{
    QFile::remove(Out());
    return AudioImporter::ImportNow(m_files.Path(file), Out(), options);
}

void TestAudioImporterFormats::initTestCase()
{
    QVERIFY(Run(QString::fromUtf8(sources), {}));
    // Programs spend much of their time in starting, so several run at once.
    QThreadPool pool;
    for (const Kind& kind : kinds) {
        pool.start([this, &kind] {
            Make(QString::fromUtf8(kind.file), QString::fromUtf8(kind.recipe), kind.rate, kind.channels);
        });
    }
    pool.waitForDone();
}

void TestAudioImporterFormats::importsTheSamplesThatFFmpegDecodes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("edge");
    for (const Kind& kind : kinds) {
        QTest::addRow("%s", kind.name) << QString::fromUtf8(kind.file) << kind.rate << kind.channels << kind.edge;
    }
}

void TestAudioImporterFormats::importsTheSamplesThatFFmpegDecodes()
{
    QFETCH(const QString, file);
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    QFETCH(const int, edge);
    const Audio<double> theirs = DecodedByFFmpeg(file, channels);
    QVERIFY(theirs.FrameCount() > rate / 10);
    QVERIFY(*std::max_element(theirs.samples.begin(), theirs.samples.end()) > 0.1);

    const ImportResult result = Imported(file, {.sampleFormat = ImportOptions::Float});
    QCOMPARE(result.problem, AudioFileInfo::Problem::None);
    QCOMPARE(result.sampleRate, rate);
    QCOMPARE(result.channelCount, channels);
    const Audio<float> ours = ReadWav<float>(Out(), QAudioFormat::Float);
    QCOMPARE(ours.channels, channels);
    QCOMPARE(ours.FrameCount(), result.frameCount);
    QCOMPARE(Difference(ours, theirs, edge), QString());
}

void TestAudioImporterFormats::resamplesAsFFmpegDoes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    QTest::addRow("44.1 to 96 kHz") << u"stereo.wav"_s << 96000 << 2;
    QTest::addRow("96 to 44.1 kHz") << u"stereo96.wav"_s << 44100 << 2;
    QTest::addRow("8 to 96 kHz") << u"8.mp3"_s << 96000 << 1;
    QTest::addRow("44.1 to 96 kHz, MP3") << u"vbr.mp3"_s << 96000 << 2;
    QTest::addRow("48 to 44.1 kHz, 5.1") << u"surround.wav"_s << 44100 << 2;
}

void TestAudioImporterFormats::resamplesAsFFmpegDoes()
{
    QFETCH(const QString, file);
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    const QString copy = QString::number(rate) + u"-from-"_s + file;
    QVERIFY(Make(copy, u"cp %1 $o"_s.arg(file), rate, channels));
    const ImportResult result = Imported(copy, {.sampleRate = rate, .sampleFormat = ImportOptions::Float});
    QCOMPARE(result.sampleRate, rate);
    const Audio<float> ours = ReadWav<float>(Out(), QAudioFormat::Float);
    const Audio<double> theirs = DecodedByFFmpeg(copy, channels);
    QVERIFY(theirs.FrameCount() > rate * 9 / 10);
    QVERIFY(std::abs(ours.FrameCount() - theirs.FrameCount()) <= 2);
    QVERIFY(EqualFrames(ours, theirs, 1) >= theirs.FrameCount() - 2);
}

void TestAudioImporterFormats::addsNothingAudibleWhenItResamples_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<double>("frequency");
    QTest::addRow("44.1 to 96 kHz, 1 kHz") << 44100 << 1000.0;
    QTest::addRow("44.1 to 96 kHz, 5 kHz") << 44100 << 5000.0;
    QTest::addRow("44.1 to 96 kHz, 10 kHz") << 44100 << 10000.0;
    QTest::addRow("44.1 to 96 kHz, 15 kHz") << 44100 << 15000.0;
    QTest::addRow("8 to 96 kHz, 1 kHz") << 8000 << 1000.0;
}

void TestAudioImporterFormats::addsNothingAudibleWhenItResamples()
{
    QFETCH(const int, from);
    QFETCH(const double, frequency);
    m_files.Write(u"sine.wav"_s, SineFile(from, frequency));
    QVERIFY(Imported(u"sine.wav"_s, {.sampleRate = 96000, .sampleFormat = ImportOptions::Float}).IsSuccess());
    const Audio<float> audio = ReadWav<float>(Out(), QAudioFormat::Float);
    QVERIFY(audio.FrameCount() > 95000);
    const double residue = Spectrum::ResidueBelow(20000.0, audio.samples, 96000, frequency);
    QVERIFY2(residue >= 100.0, qPrintable(u"only %1 dB below"_s.arg(residue)));
}

void TestAudioImporterFormats::writesTheIntegersThatFFmpegWrites_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("channels");
    for (const char* file : {"s16.flac", "s24.flac", "u8.wav", "loud.wav", "vbr.mp3"}) {
        QTest::addRow("%s", file) << QString::fromUtf8(file) << 44100 << 2;
    }
    QTest::addRow("surround.flac") << u"surround.flac"_s << 48000 << 2;
    QTest::addRow("mono.mp3") << u"mono.mp3"_s << 44100 << 1;
}

void TestAudioImporterFormats::writesTheIntegersThatFFmpegWrites()
{
    QFETCH(const QString, file);
    QFETCH(const int, rate);
    QFETCH(const int, channels);
    const ImportResult result = Imported(file, {.sampleFormat = ImportOptions::Int16});
    QCOMPARE(result.sampleFormat, QAudioFormat::Int16);
    QCOMPARE(result.sampleRate, rate);
    const Audio<qint16> ours = ReadWav<qint16>(Out(), QAudioFormat::Int16);
    QCOMPARE(ours.channels, channels);
    const QByteArray theirs = Output(u"ffmpeg"_s, {u"-v"_s, u"error"_s, u"-i"_s, m_files.Path(file), u"-ac"_s,
                                                   QString::number(channels), u"-f"_s, u"s16le"_s, u"-"_s});
    QVERIFY(theirs.size() > rate);
    QCOMPARE(ours.samples, SamplesOf<qint16>(theirs));
}

void TestAudioImporterFormats::writesFloatsWhenTheChoiceIsLeftToIt()
{
    QCOMPARE(Imported(u"s16.flac"_s, {}).sampleFormat, QAudioFormat::Float);
    const Audio<float> audio = ReadWav<float>(Out(), QAudioFormat::Float);
    QCOMPARE(Difference(audio, DecodedByFFmpeg(u"s16.flac"_s, 2), 0), QString());
}

/** FFmpeg knows no way to mix them, and gives no answer itself. */
void TestAudioImporterFormats::averagesManyChannelsWithoutNames_data()
{
    QTest::addColumn<int>("channels");
    for (const int channels : {9, 11, 13, 64}) {
        QTest::addRow("%d", channels) << channels;
    }
}

void TestAudioImporterFormats::averagesManyChannelsWithoutNames()
{
    QFETCH(const int, channels);
    WavTest::WavBytes wav{.channels = quint16(channels)};
    for (int i = 0; i < 1000 * channels; ++i) {
        wav.data += WavTest::LittleEndian(qint16(100 * (i % channels)));
    }
    m_files.Write(u"many.wav"_s, wav.Build());
    const ImportResult result = Imported(u"many.wav"_s, {.sampleFormat = ImportOptions::Int16});
    QCOMPARE(result.problem, AudioFileInfo::Problem::None);
    QCOMPARE(result.channelCount, 2);
    QCOMPARE(ReadWav<qint16>(Out(), QAudioFormat::Int16).samples,
             QList<qint16>(2000, qint16(50 * (channels - 1))));
}

/** FFmpeg finds no frames in such a file, though it is sound and states its length. */
void TestAudioImporterFormats::takesNoFileOfStatedLengthForAnEmptyOne()
{
    QVERIFY(Make(u"huge.flac"_s,
                 u"f -stream_loop 3 -i stereo.wav -sample_fmt s32 -frame_size 65535 -strict experimental $o"_s,
                 44100, 2));
    const bool isFound = !DecodedByFFmpeg(u"huge.flac"_s, 2).samples.isEmpty();
    const ImportResult result = Imported(u"huge.flac"_s, {});
    QCOMPARE(result.problem, isFound ? AudioFileInfo::Problem::None : AudioFileInfo::Problem::Damaged);
    QCOMPARE(QFile::exists(Out()), isFound);
}

QTEST_GUILESS_MAIN(TestAudioImporterFormats)
#include "tst_audioimporter_formats.moc"
