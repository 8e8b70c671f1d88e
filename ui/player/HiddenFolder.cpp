#include "ui/player/HiddenFolder.h"

#include "ui/player/LoadThreads.h"

#include <QtCore/QDir>

namespace vantoraudio::vantorAudioEngine::UI {

HiddenFolder::HiddenFolder(const QString& directory, const QString& kind)
    : m_folder(AudioEngine::HiddenTemplate(directory, kind)), m_lock(m_folder.path())
{
    // It is removed where there is time for it.
    m_folder.setAutoRemove(false);
}

std::shared_ptr<HiddenFolder> HiddenFolder::Make(const QString& directory, const QString& kind)
{
    // Absolute, because the program may change its current directory. Another program that sweeps at this moment
    // may take a folder away before it is locked.
    constexpr int mostTries = 10;
    const QString parent = QDir(directory).absolutePath();
    std::unique_ptr<HiddenFolder> folder(new HiddenFolder(parent, kind));
    for (int tries = 1; folder->m_folder.isValid() && !folder->m_lock.IsHeld() && tries < mostTries; ++tries) {
        folder.reset(new HiddenFolder(parent, kind));
    }
    if (!folder->m_folder.isValid()) {
        return nullptr;
    }
    return {folder.release(), &RemoveInBackground};
}

/** Removing a long file takes its time. Without the warnings of QTemporaryDir: a program that closes may remove
 * the folder around this one at the same moment. Only for valid folders: an empty path would mean the current one.
 */
void HiddenFolder::RemoveInBackground(HiddenFolder* folder)
{
    LoadThreads::Start([folder] {
        QDir(folder->m_folder.path()).removeRecursively();
        delete folder;
    });
}

} // namespace vantoraudio::vantorAudioEngine::UI
