#include "engine/files/LargePages.h"

#ifdef Q_OS_LINUX
#    include <cstdint>
#    include <sys/mman.h>
#    include <unistd.h>
#endif

namespace vantoraudio::AudioEngine {

#ifdef Q_OS_LINUX

void PreferLargePages(const void* memory, qsizetype bytes)
{
    // Above this the C library gives every piece of memory pages of its own, which take the wish along when they
    // are given back.
    constexpr qsizetype least = qsizetype(32) * 1024 * 1024;
    if (bytes < least) {
        return;
    }
    const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t firstWholePage = (begin + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t end = begin + static_cast<std::uintptr_t>(bytes);
    // It is a wish only: what comes of it makes no difference but in time.
    madvise(reinterpret_cast<void*>(firstWholePage), end - firstWholePage, MADV_HUGEPAGE);
}

#else

void PreferLargePages(const void* /*memory*/, qsizetype /*bytes*/) {}

#endif

} // namespace vantoraudio::AudioEngine
