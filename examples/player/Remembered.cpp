#include "Remembered.h"

#include "HostPlayer.h"

#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

QString KeyOf(Remembered::Folder folder)
{
    return folder == Remembered::Folder::Open ? u"folder/open"_s : u"folder/export"_s;
}

void KeepView(const HostPlayer& player, QSettings& settings)
{
    const auto [start, end] = player.GetVisibleRange();
    settings.setValue(u"view/file"_s, player.GetOriginalAudioFilePath());
    settings.setValue(u"view/start"_s, start);
    settings.setValue(u"view/end"_s, end);
}

} // namespace

void Remembered::KeepPlayer(const HostPlayer& player)
{
    QSettings settings;
    settings.setValue(u"volume"_s, player.GetAudioPlayBackVolume());
    settings.setValue(u"mute"_s, player.GetAudioPlayBackMute());
    settings.setValue(u"loop"_s, player.GetLoop());
    if (!player.GetAudioFileName().isEmpty()) {
        KeepView(player, settings);
    }
}

void Remembered::RestorePlayer(HostPlayer& player)
{
    const QSettings settings;
    bool isNumber = false;
    const int volume = settings.value(u"volume"_s).toInt(&isNumber);
    player.SetAudioPlayBackVolume(isNumber ? std::clamp(volume, 0, 100) : 99);
    player.SetAudioPlayBackMute(settings.value(u"mute"_s).toBool());
    player.SetLoop(settings.value(u"loop"_s).toBool());
}

Remembered::View Remembered::LastView()
{
    const QSettings settings;
    return {settings.value(u"view/file"_s).toString(), settings.value(u"view/start"_s).toDouble(),
            settings.value(u"view/end"_s).toDouble()};
}

void Remembered::KeepFolderOf(Folder folder, const QString& filePath)
{
    QSettings().setValue(KeyOf(folder), QFileInfo(filePath).absolutePath());
}

QString Remembered::GetFolder(Folder folder, const QString& otherwise)
{
    const QString path = QSettings().value(KeyOf(folder)).toString();
    return !path.isEmpty() && QFileInfo(path).isDir() ? path : otherwise;
}
