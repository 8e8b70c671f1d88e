/** The least that embedding needs: shows, plays and edits the file that the command line names. */
#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QLibraryInfo>
#include <QtCore/QTemporaryDir>
#include <QtCore/QVersionNumber>
#include <QtWidgets/QApplication>

using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;

int main(int argc, char* argv[])
{
    // Qt before 6.5 would choose a backend that needs further plug-ins.
    if (QLibraryInfo::version() < QVersionNumber(6, 5) && !qEnvironmentVariableIsSet("QT_MEDIA_BACKEND")) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    QApplication application(argc, argv);
    const QTemporaryDir workingCopies;

    AudioPlayerWidget player;
    player.SetWritableDirectoryPath(workingCopies.path());
    player.SetEditMode(true);
    player.resize(1000, 400);
    player.show();
    player.SetLoadInBackground(true);
    player.LoadFile(QApplication::arguments().value(1));

    const int exitCode = QApplication::exec();
    player.Close();
    return exitCode;
}
