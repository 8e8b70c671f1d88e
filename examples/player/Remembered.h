#pragma once

#include <QtCore/QString>

class HostPlayer;

/** What the program remembers of its player and its dialogs from one start to the next. */
namespace Remembered {

/** Volume, mute and loop, and which stretch of the file shows. */
void KeepPlayer(const HostPlayer& player);
/** Not the stretch: there is no file yet. */
void RestorePlayer(HostPlayer& player);
/** Shows that stretch again, if its file is loaded. */
void RestoreView(HostPlayer& player);

enum class Folder
{
    Open,
    Export
};

void KeepFolderOf(Folder folder, const QString& filePath);
/** `otherwise` when none is remembered, or it is no longer there. */
QString GetFolder(Folder folder, const QString& otherwise = {});

} // namespace Remembered
