#pragma once

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QString>

#include <functional>

namespace vantoraudio::vantorAudioEngine::UI {

/** Told how far the copying has come, from 0 to 1000, and answers whether it goes on. */
using CopyObserver = std::function<bool(int permille)>;

/**
 * Copies the bytes of the file `from` to the new file `to`: at once where the file system can let both share them,
 * otherwise block by block, as far as `from` reaches at the start. Any thread. None, Cancelled, or what went
 * wrong; except for None a part of `to` may stay.
 */
[[nodiscard]] AudioEngine::AudioFileInfo::Problem CopyFile(const QString& from, const QString& to,
                                                           const CopyObserver& goesOn);

/**
 * Makes sure that `to` is a file of its own: one that is there already stays as it is; otherwise it becomes a
 * whole copy of the regular file `from`, with its permissions and the owner's right to write. A link of that name
 * is replaced, because what is written to the copy would end up in the file that the link leads to. False when
 * there can be no such copy; nothing has changed then.
 */
[[nodiscard]] bool ProvideCopy(const QString& from, const QString& to);

} // namespace vantoraudio::vantorAudioEngine::UI
