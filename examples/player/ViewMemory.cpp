#include "ViewMemory.h"

#include "HostPlayer.h"
#include "Remembered.h"

ViewMemory::ViewMemory(HostPlayer& player) : m_player(player)
{
    const Remembered::View last = Remembered::LastView();
    m_views.insert(last.file, {last.start, last.end});
    // Later it may have followed the position back to the start.
    connect(&player, &HostPlayer::LoadStarted, this, &ViewMemory::Note);
}

void ViewMemory::Restore()
{
    const auto view = m_views.constFind(m_player.GetOriginalAudioFilePath());
    if (view != m_views.cend()) {
        const auto [start, end] = *view;
        m_player.ShowRange(start, end);
    }
}

void ViewMemory::Note()
{
    if (m_player.GetAudioFileName().isEmpty()) {
        return;
    }
    const auto [start, end] = m_player.GetVisibleRange();
    if (start > 0.0 || end < m_player.GetAudioDuration()) {
        m_views.insert(m_player.GetOriginalAudioFilePath(), {start, end});
    } else {
        // All of it, also when it is longer by then.
        m_views.remove(m_player.GetOriginalAudioFilePath());
    }
}
