#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <array>
#include <bit>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fuzzer/FuzzedDataProvider.h>
#include <limits>
#include <sys/resource.h>

/** What the fuzzers share. Each brings the function LLVMFuzzerTestOneInput(), which is called with one input after
 *  another. */
namespace Fuzzing {

/** Otherwise the program ends and leaves the input behind. */
inline void Require(bool isTrue, const char* file = __builtin_FILE(), int line = __builtin_LINE())
{
    if (!isTrue) {
        std::fprintf(stderr, "%s:%d: not so\n", file, line);
        std::abort();
    }
}

/** In seconds: no file is that long. */
inline constexpr double beyondAllFiles = 1e19;

/** For FFmpeg, which believes sizes that headers state: in bytes, far more than any input needs. */
inline constexpr qint64 largestAllocation = qint64(256) << 20;

/** No input may keep the processor busy for longer than a second. Counted is this program's own time, so that a
 *  busy machine makes no findings. */
class TimeLimit
{
public:
    TimeLimit() = default;
    ~TimeLimit() { Require(Now() - m_start <= longest); }
    Q_DISABLE_COPY_MOVE(TimeLimit)

private:
    static constexpr double longest = 1.0;

    static double Now()
    {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
    }

    double m_start = Now();
};

/** The folder of an input's files, in the temporary folder of the system: scripts/fuzz.sh chooses one in memory.
 */
class Folder
{
public:
    static Folder& Get()
    {
        static Folder folder;
        return folder;
    }

    QString Path(const QString& name) const { return m_folder.filePath(name); }

    QString Write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(Path(name));
        Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    }

    QByteArray Read(const QString& name) const
    {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /** Removes everything, and returns how many entries there were, hidden ones included. What a thread of the
     *  library is removing at that moment may stay. */
    qsizetype Clear() const
    {
        const QDir folder(m_folder.path());
        const QStringList names = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
        for (const QString& name : names) {
            static_cast<void>(QFile::remove(Path(name)) || QDir(Path(name)).removeRecursively());
        }
        return names.size();
    }

private:
    /** A file that grows without end is not to fill the memory that it lies in. */
    static constexpr rlim_t longestFile = rlim_t(64) << 20;

    Folder()
    {
        const rlimit limit{longestFile, longestFile};
        Require(m_folder.isValid() && setrlimit(RLIMIT_FSIZE, &limit) == 0);
        std::signal(SIGXFSZ, SIG_IGN);
    }

    QTemporaryDir m_folder;
};

/** The input's bytes, in part as numbers. Numbers come off its end, so a whole file may stand before them. */
class Input : public FuzzedDataProvider
{
public:
    using FuzzedDataProvider::FuzzedDataProvider;

    /** Any double, those that are no finite numbers too; often one that makes sense as seconds. */
    double Number()
    {
        switch (ConsumeIntegralInRange(0, 3)) {
        case 0:
            return std::bit_cast<double>(ConsumeIntegral<std::uint64_t>());
        case 1:
            return PickValueInArray(odd);
        default:
            return double(ConsumeIntegral<std::int16_t>()) / 256.0;
        }
    }

    QByteArray Bytes(std::size_t count)
    {
        const std::string bytes = ConsumeBytesAsString(count);
        return QByteArray::fromStdString(bytes);
    }
    QByteArray AllBytes() { return Bytes(remaining_bytes()); }

private:
    using Limits = std::numeric_limits<double>;
    static constexpr std::array odd{0.0,
                                    -0.0,
                                    1.0,
                                    1e-3,
                                    300.0,
                                    5400.0,
                                    1'080'000.0,
                                    2147483647.0 / 44100.0,
                                    4294967296.,
                                    9.3e18,
                                    Limits::max(),
                                    Limits::denorm_min(),
                                    Limits::infinity(),
                                    -Limits::infinity(),
                                    Limits::quiet_NaN()};
};

} // namespace Fuzzing
