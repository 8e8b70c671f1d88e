#pragma once

#include <QtCore/QString>

class HostPlayer;

/** What the program remembers of its player and its dialogs from one start to the next. */
namespace Remembered {

/** Volume, mute and loop, and which stretch of the file shows. */
void KeepPlayer(const HostPlayer& player);
/** Not the stretch: there is no file yet. */
void RestorePlayer(HostPlayer& player);
/** The stretch, in seconds, and its file. */
struct View
{
    QString file;
    double start = 0.0;
    double end = 0.0;
};
View LastView();

enum class Folder
{
    Open,
    Export
};

void KeepFolderOf(Folder folder, const QString& filePath);
/** `otherwise` when none is remembered, or it is no longer there. */
QString GetFolder(Folder folder, const QString& otherwise = {});

} // namespace Remembered
