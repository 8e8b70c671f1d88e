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
            Release(pa_context_get_sink_info_list(context, OnSink, sinks));
        } else if (!PA_CONTEXT_IS_GOOD(state)) {
            Of(sinks).Forget();
        }
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
            Release(pa_context_get_sink_info_by_index(context, number, OnSink, sinks));
        } else if (kind == PA_SUBSCRIPTION_EVENT_REMOVE) {
            Of(sinks).Remove(number);
        }
    }

    static void OnSink(pa_context*, const pa_sink_info* sink, int isEnd, void* sinks)
    {
        if (isEnd == 0) {
            Of(sinks).Add(sink->index, sink->name);
        }
    }
};

#endif

SoundServerSinks& SoundServerSinks::Shared()
{
    static SoundServerSinks shared;
    shared.ConnectIfBroken();
    return shared;
}

SoundServerSinks::SoundServerSinks() = default;

SoundServerSinks::~SoundServerSinks()
{
    Disconnect();
}

bool SoundServerSinks::HasLost(const QByteArray& id) const
{
    const QMutexLocker lock(&m_mutex);
    return m_lost.contains(id);
}

#ifdef Q_OS_LINUX

void SoundServerSinks::ConnectIfBroken()
{
    const QMutexLocker connecting(&m_connecting);
    {
        const QMutexLocker lock(&m_mutex);
        if (!std::exchange(m_isBroken, false)) {
            return;
        }
    }
    Disconnect();
    m_loop = pa_threaded_mainloop_new();
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop), "output devices");
    pa_context_set_state_callback(m_context, Callbacks::OnState, this);
    // Never starts a server: whoever plays does that.
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0 ||
        pa_threaded_mainloop_start(m_loop) < 0) {
        Forget();
    }
}

void SoundServerSinks::Disconnect()
{
    if (!m_loop) {
        return;
    }
    pa_threaded_mainloop_stop(m_loop);
    pa_context_set_state_callback(m_context, nullptr, nullptr);
    pa_context_disconnect(m_context);
    pa_context_unref(std::exchange(m_context, nullptr));
    pa_threaded_mainloop_free(std::exchange(m_loop, nullptr));
}

#else

void SoundServerSinks::ConnectIfBroken() {}

void SoundServerSinks::Disconnect() {}

#endif

void SoundServerSinks::Add(unsigned number, const QByteArray& id)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_present.insert(number, id);
        m_lost.remove(id);
    }
    Q_EMIT Changed();
}

void SoundServerSinks::Remove(unsigned number)
{
    {
        const QMutexLocker lock(&m_mutex);
        const QByteArray id = m_present.take(number);
        if (id.isEmpty()) {
            return;
        }
        m_lost.insert(id);
    }
    Q_EMIT Changed();
}

void SoundServerSinks::Forget()
{
    const QMutexLocker lock(&m_mutex);
    m_isBroken = true;
    m_present.clear();
    m_lost.clear();
}

} // namespace vantoraudio::AudioEngine
