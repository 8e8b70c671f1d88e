#include "engine/samples/S24Samples.h"

#if defined(__x86_64__) && defined(__GNUC__)
#    define VANTORAUDIO_SHUFFLES_BYTES
#    include <tmmintrin.h>
#endif

namespace vantoraudio::AudioEngine {

namespace {

#ifdef VANTORAUDIO_SHUFFLES_BYTES

bool CanShuffleBytes()
{
    static const bool can = __builtin_cpu_supports("ssse3") != 0;
    return can;
}

/** Widens four samples at once as long as the 16 bytes that are read for them exist. Returns how many it did. */
[[gnu::target("ssse3")]] qsizetype WidenFours(const char* from, char* to, qsizetype count)
{
    constexpr char zero = -1;
    const __m128i order = _mm_setr_epi8(zero, 0, 1, 2, zero, 3, 4, 5, zero, 6, 7, 8, zero, 9, 10, 11);
    qsizetype done = 0;
    for (; 3 * (count - done) >= 16; done += 4) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 3 * done));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 4 * done), _mm_shuffle_epi8(bytes, order));
    }
    return done;
}

#else

bool CanShuffleBytes()
{
    return false;
}

qsizetype WidenFours(const char* /*from*/, char* /*to*/, qsizetype /*count*/)
{
    return 0;
}

#endif

} // namespace

void WidenS24Plainly(const char* from, char* to, qsizetype count)
{
    for (qsizetype i = 0; i < count; ++i) {
        qToLittleEndian(S24InS32(from + 3 * i), to + 4 * i);
    }
}

QByteArray WidenS24Block(QByteArrayView block)
{
    const qsizetype count = block.size() / 3;
    QByteArray widened(count * 4, Qt::Uninitialized);
    const qsizetype done = CanShuffleBytes() ? WidenFours(block.data(), widened.data(), count) : 0;
    WidenS24Plainly(block.data() + 3 * done, widened.data() + 4 * done, count - done);
    return widened;
}

} // namespace vantoraudio::AudioEngine
