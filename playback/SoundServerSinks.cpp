#include "playback/SoundServerSinks.h"

#include <QtCore/QMutexLocker>

#ifdef Q_OS_LINUX
#    include <pulse/pulseaudio.h>
#endif

#include <utility>

namespace vantoraudio::AudioEngine {

#ifdef Q_OS_LINUX

/** What the server says, on the connection's thread. */
class SoundServerSinks::Callbacks
{
public:
    static void OnState(pa_context* context, void* sinks)
    {
        const pa_context_state_t state = pa_context_get_state(context);
        if (state == PA_CONTEXT_READY) {
            pa_context_set_subscribe_callback(context, OnChange, sinks);
            Release(pa_context_subscribe(context, PA_SUBSCRIPTION_MASK_SINK, nullptr, nullptr));
            Release(pa_context_get_sink_info_list(context, OnListedSink, sinks));
        } else if (!PA_CONTEXT_IS_GOOD(state)) {
            Of(sinks).SetListed(false);
            Of(sinks).ConnectLater();
        }
    }

    static void OnTime(pa_mainloop_api* loop, pa_time_event* event, const timeval*, void* sinks)
    {
        loop->time_free(event);
        Of(sinks).Connect();
    }

private:
    static SoundServerSinks& Of(void* sinks) { return *static_cast<SoundServerSinks*>(sinks); }

    static void Release(pa_operation* operation)
    {
        if (operation) {
            pa_operation_unref(operation);
        }
    }

    static void OnChange(pa_context* context, pa_subscription_event_type_t event, uint32_t number, void* sinks)
    {
        const int kind = event & PA_SUBSCRIPTION_EVENT_TYPE_MASK;
        if (kind == PA_SUBSCRIPTION_EVENT_NEW) {
            Release(pa_context_get_sink_info_by_index(context, number, OnNewSink, sinks));
        } else if (kind == PA_SUBSCRIPTION_EVENT_REMOVE) {
            Of(sinks).Remove(number);
        }
    }

    static void OnNewSink(pa_context*, const pa_sink_info* sink, int isEnd, void* sinks)
    {
        if (isEnd == 0) {
            Of(sinks).Add(sink->index, sink->name);
        }
    }

    static void OnListedSink(pa_context* context, const pa_sink_info* sink, int isEnd, void* sinks)
    {
        OnNewSink(context, sink, isEnd, sinks);
        if (isEnd > 0) {
            Of(sinks).SetListed(true);
        }
    }
};

#endif

SoundServerSinks& SoundServerSinks::Shared()
{
    static SoundServerSinks shared;
    return shared;
}

SoundServerSinks::~SoundServerSinks()
{
    Disconnect();
}

std::optional<QSet<QByteArray>> SoundServerSinks::Present() const
{
    const QMutexLocker lock(&m_mutex);
    if (!m_isListed) {
        return std::nullopt;
    }
    return QSet<QByteArray>(m_present.cbegin(), m_present.cend());
}

bool SoundServerSinks::IsAway() const
{
    const QMutexLocker lock(&m_mutex);
    return m_isAway;
}

bool SoundServerSinks::Knows(const QByteArray& id) const
{
    const QMutexLocker lock(&m_mutex);
    return m_known.contains(id);
}

#ifdef Q_OS_LINUX

SoundServerSinks::SoundServerSinks() : m_loop(pa_threaded_mainloop_new())
{
    Connect();
    pa_threaded_mainloop_start(m_loop);
}

void SoundServerSinks::Connect()
{
    if (m_context) {
        pa_context_set_state_callback(m_context, nullptr, nullptr);
        pa_context_unref(m_context);
    }
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop), "output devices");
    pa_context_set_state_callback(m_context, Callbacks::OnState, this);
    // Never starts a server: whoever plays does that. The callback is told of a refusal too.
    pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void SoundServerSinks::ConnectLater()
{
    timeval time{};
    pa_timeval_add(pa_gettimeofday(&time), PA_USEC_PER_SEC);
    pa_mainloop_api* const loop = pa_threaded_mainloop_get_api(m_loop);
    loop->time_new(loop, &time, Callbacks::OnTime, this);
}

void SoundServerSinks::Disconnect()
{
    pa_threaded_mainloop_stop(m_loop);
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
    pa_threaded_mainloop_free(m_loop);
}

#else

SoundServerSinks::SoundServerSinks() = default;

void SoundServerSinks::Disconnect() {}

#endif

void SoundServerSinks::Add(unsigned number, const QByteArray& id)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_present.insert(number, id);
        m_known.insert(id);
    }
    Q_EMIT Changed();
}

void SoundServerSinks::Remove(unsigned number)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_present.remove(number);
    }
    Q_EMIT Changed();
}

/** While the server is away nothing is listed. */
void SoundServerSinks::SetListed(bool isListed)
{
    {
        const QMutexLocker lock(&m_mutex);
        if (!isListed) {
            m_present.clear();
        }
        if (std::exchange(m_isListed, isListed) == isListed) {
            return;
        }
        m_isAway = !isListed;
    }
    if (!isListed) {
        Q_EMIT Left();
    }
    Q_EMIT Changed();
}

} // namespace vantoraudio::AudioEngine
