#include "Languages.h"
#include "PlayerWindow.h"
#include "ScreenshotJob.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Version.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QLibraryInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(main)
};

struct Range
{
    double start;
    double end;
};

struct Options
{
    QStringList files;
    QString screenshot;
    std::optional<Range> view;
    std::optional<Range> selection;
    bool play = false;
};

/** Qt before 6.5 would choose a backend that needs further plug-ins. */
void ChooseMediaBackend()
{
    if (QLibraryInfo::version() < QVersionNumber(6, 5) && !qEnvironmentVariableIsSet("QT_MEDIA_BACKEND")) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
}

std::optional<Range> ParseRange(const QString& text)
{
    const QStringList parts = text.split(u'-');
    bool startIsNumber = false;
    bool endIsNumber = false;
    if (parts.size() != 2) {
        return std::nullopt;
    }
    const Range range{parts[0].toDouble(&startIsNumber), parts[1].toDouble(&endIsNumber)};
    return startIsNumber && endIsNumber && range.start < range.end ? std::optional(range) : std::nullopt;
}

std::optional<Range> RangeOption(QCommandLineParser& parser, const QCommandLineOption& option)
{
    if (!parser.isSet(option)) {
        return std::nullopt;
    }
    const std::optional<Range> range = ParseRange(parser.value(option));
    if (!range) {
        QTextStream(stderr) << Texts::tr("Not a range of seconds such as 1.5-3: %1").arg(parser.value(option))
                            << Qt::endl;
        parser.showHelp(2);
    }
    return range;
}

Options ParseOptions(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(Texts::tr("Shows and plays an audio file."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption play(u"play"_s, Texts::tr("Start playing at once."));
    const QCommandLineOption view(u"view"_s, Texts::tr("Show this range of seconds."), u"FROM-TO"_s);
    const QCommandLineOption selection(u"selection"_s, Texts::tr("Select this range of seconds."), u"FROM-TO"_s);
    const QCommandLineOption screenshot(
        u"screenshot"_s, Texts::tr("Save a picture of the window once it is complete, and quit."), u"FILE.png"_s);
    parser.addOptions({play, view, selection, screenshot});
    parser.addPositionalArgument(u"FILE"_s, Texts::tr("The files to open."), u"[FILE...]"_s);
    parser.process(application);

    return {parser.positionalArguments(), parser.value(screenshot), RangeOption(parser, view),
            RangeOption(parser, selection), parser.isSet(play)};
}

void Show(PlayerWindow& window, const Options& options)
{
    if (options.view) {
        window.ShowRange(options.view->start, options.view->end);
    }
    if (options.selection) {
        window.SelectRange(options.selection->start, options.selection->end);
    }
    if (options.play) {
        window.Play();
    }
}

void TakeScreenshot(PlayerWindow& window, const Options& options, bool opened)
{
    if (options.screenshot.isEmpty()) {
        return;
    }
    const bool playing = opened && options.play && !options.files.isEmpty();
    auto* job = new ScreenshotJob(window, options.screenshot, playing);
    QObject::connect(job, &ScreenshotJob::Done, qApp, [opened](const QString& failure) {
        if (!failure.isEmpty()) {
            QTextStream(stderr) << failure << Qt::endl;
        }
        QApplication::exit(opened && failure.isEmpty() ? 0 : 1);
    });
}

void OnOpened(PlayerWindow& window, const Options& options)
{
    Show(window, options);
    TakeScreenshot(window, options, true);
}

void OnNotOpened(PlayerWindow& window, const Options& options)
{
    if (!window.FailureText().isEmpty()) {
        QTextStream(stderr) << window.FailureText() << Qt::endl;
    }
    TakeScreenshot(window, options, false);
}

void Open(PlayerWindow& window, const Options& options)
{
    // Of the files that the window opens only the first is meant.
    auto* first = new QObject(&window);
    const auto upon = [&, first](auto signal, auto function) {
        QObject::connect(&window, signal, first, [&, first, function] {
            delete first;
            function(window, options);
        });
    };
    upon(&PlayerWindow::Opened, &OnOpened);
    upon(&PlayerWindow::OpenFailed, &OnNotOpened);
    upon(&PlayerWindow::OpenCancelled, &OnNotOpened);
    window.OpenFiles(options.files);
}

void Start(PlayerWindow& window, const Options& options)
{
    if (options.files.isEmpty()) {
        TakeScreenshot(window, options, true);
    } else {
        Open(window, options);
    }
}

} // namespace

int main(int argc, char* argv[])
{
    ChooseMediaBackend();
    // A broken file may ask FFmpeg for gigabytes. No real one needs as much as this in one piece.
    vantoraudio::AudioEngine::AudioImporter::LimitAllocations(qint64(256) << 20);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(u"vantoraudio"_s);
    QApplication::setApplicationName(u"vantoraudio-player"_s);
    // Behind the name of the file in the window's title.
    QApplication::setApplicationDisplayName(u"vantorAudioEngine player"_s);
    QApplication::setApplicationVersion(vantoraudio::AudioEngine::libVersionString());
    // The waveform tells of each of its frames there, which helps its developers and nobody else.
    QLoggingCategory::setFilterRules(u"default.debug=false"_s);
    InstallTranslations();
    const Options options = ParseOptions(application);

    PlayerWindow window;
    window.show();
    // Once the application runs, which a screenshot may end at once.
    QTimer::singleShot(0, &window, [&] { Start(window, options); });
    return QApplication::exec();
}
