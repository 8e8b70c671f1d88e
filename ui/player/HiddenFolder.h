#pragma once

#include "engine/files/Leftovers.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <memory>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * A folder that nobody looks into. It is removed, with all that is in it, when nobody holds it any more, without
 * waiting for that. Where the program is killed, the next load into the same directory removes it, and leaves
 * alone those that are in use. Any thread.
 */
class HiddenFolder
{
public:
    /** In `directory`; null when there can be none. `kind` is a part of its name. */
    [[nodiscard]] static std::shared_ptr<HiddenFolder> Make(const QString& directory, const QString& kind);

    [[nodiscard]] QString FilePath(const QString& name) const { return m_folder.filePath(name); }

private:
    HiddenFolder(const QString& directory, const QString& kind);
    static void RemoveInBackground(HiddenFolder* folder);

    QTemporaryDir m_folder;
    AudioEngine::FolderLock m_lock;
};

} // namespace vantoraudio::vantorAudioEngine::UI
