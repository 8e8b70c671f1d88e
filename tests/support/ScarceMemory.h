#pragma once

#include <climits>
#include <cstring>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

/** While it lives, FFmpeg finds no memory for more than so many bytes at once. */
class ScarceMemory
{
public:
    explicit ScarceMemory(size_t mostBytes) { av_max_alloc(mostBytes); }
    ~ScarceMemory() { av_max_alloc(INT_MAX); }
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;
};

/** While it lives, FFmpeg's memory ends when it logs what begins with the given text. Nothing is logged meanwhile.
 */
class MemoryThatEndsAt
{
public:
    explicit MemoryThatEndsAt(const char* text)
    {
        Text() = text;
        av_log_set_callback(&OnLog);
    }
    ~MemoryThatEndsAt()
    {
        av_log_set_callback(&av_log_default_callback);
        av_max_alloc(INT_MAX);
    }
    MemoryThatEndsAt(const MemoryThatEndsAt&) = delete;
    MemoryThatEndsAt& operator=(const MemoryThatEndsAt&) = delete;

private:
    static const char*& Text()
    {
        static const char* text = nullptr;
        return text;
    }
    static void OnLog(void* /*object*/, int /*level*/, const char* format, va_list /*arguments*/)
    {
        if (std::strncmp(format, Text(), std::strlen(Text())) == 0) {
            av_max_alloc(1);
        }
    }
};
