#pragma once

#include "tests/support/Deleter.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThreadPool>
#include <QtGui/QAccessible>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <functional>

/** Programs that delete a player in a slot, at many moments of its life. */
namespace DeletedPlayers {

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

struct Thing
{
    const char* name;
    std::function<void(AudioPlayerWidget&)> what;
    /** Whether a position must be reported because of it. Of the others, those that come while it plays are
     * followed by the reports of playing, and the rest move nothing. */
    bool movesPosition = false;
};
using Things = QList<Thing>;

inline constexpr int patience = 10000;
inline constexpr int always = -1;

inline void WaitFor(AudioPlayerWidget& widget, const std::function<bool(AudioPlayerWidget&)>& condition)
{
    const QPointer<AudioPlayerWidget> alive(&widget);
    static_cast<void>(QTest::qWaitFor([&] { return !alive || condition(*alive); }, patience));
}

inline void LetRest(AudioPlayerWidget& widget)
{
    WaitFor(widget, [](auto& w) { return !w.IsBusy() && !w.IsReadingSamples() && !w.IsLoading(); });
}

/** Unlike QTest's, it does not ask for the widget afterwards. */
inline void Click(QWidget& widget)
{
    const QPointF position(100.0, 50.0);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, position, widget.mapToGlobal(position), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
}

inline void Type(QLineEdit& field, const QString& text)
{
    field.setText(text);
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&field, &event);
}

inline void AskForMenu(AudioPlayerWidget& widget)
{
    const auto& waveform = *widget.findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
    const QPoint position = waveform.mapTo(&widget, waveform.rect().center());
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, widget.mapToGlobal(position));
    QApplication::sendEvent(&widget, &event);
}

/** Until it has reported some positions. With newer versions of Qt it may not have begun yet. */
inline void PlayOn(AudioPlayerWidget& widget)
{
    int reports = 0;
    const QObject context;
    QObject::connect(&widget, &AudioPlayerWidget::AudioPositionChanged, &context, [&] { ++reports; });
    WaitFor(widget, [&](auto&) { return reports > 3; });
}

/** Everything that makes the widgets emit, one thing after the other. */
inline Things ThingsToDo(const QString& folder)
{
    const auto button = [](const char* name) {
        return [name](auto& w) { w.template findChild<QPushButton*>(QLatin1StringView(name))->click(); };
    };
    const auto field = [](const char* name, const QString& text) {
        return [name, text](auto& w) { Type(*w.template findChild<QLineEdit*>(QLatin1StringView(name)), text); };
    };
    const auto select = [](double start, double end) {
        return [=](auto& w) { w.SetSelectedSnippet({start, end}); };
    };
    const auto seek = [](double seconds) { return [=](auto& w) { w.UpdateAudioPosition(seconds); }; };
    return {
        {"a folder", [=](auto& w) { w.SetWritableDirectoryPath(folder + u"/copies"_s); }},
        {"a size", [](auto& w) { w.resize(800, 400); }},
        {"showing", [](auto& w) { w.show(); }},
        {"edit mode", [](auto& w) { w.SetEditMode(true); }},
        {"flexible sizes", [](auto& w) { w.UseFlexibleSizes(); }},
        {"smooth moves", [](auto& w) { w.SetPositionMovesSmoothly(true); }},
        {"playing faster", [](auto& w) { w.SetPlaybackRate(2.0); }},
        {"keeping the place", [](auto& w) { w.SetChannelChangeKeepsPlace(true); }},
        {"loading nothing", [=](auto& w) { w.LoadFile(folder + u"/missing.wav"_s); }},
        {"resting after nothing", LetRest},
        {"loading", [=](auto& w) { w.LoadFile(folder + u"/tone.wav"_s); }},
        {"no longer loading", [](auto& w) { w.CancelLoad(); }},
        {"loading again", [=](auto& w) { w.LoadFile(folder + u"/tone.wav"_s); }},
        {"resting when loaded", LetRest},
        {"another file", [=](auto& w) { w.SetAudioFile(folder + u"/other.wav"_s); }},
        {"resting with it", LetRest},
        {"playing", [](auto& w) { w.Play(); }, true},
        {"seeking while playing", seek(5.0), true},
        {"playing on", PlayOn, true},
        {"selecting while playing", select(2.0, 4.0), true},
        {"selecting nothing while playing", select(0.0, 0.0)},
        {"showing a range", [](auto& w) { w.ShowRange(1.0, 2.0); }},
        {"showing everything", [](auto& w) { w.ShowRange(0.0, 20.0); }},
        {"stopping", button("btnStop"), true},
        {"playing again", [](auto& w) { w.Play(); }, true},
        {"seeking while playing again", seek(5.0), true},
        {"selecting while playing again", select(2.0, 4.0), true},
        {"typing a start", field("edSelectionStart", u"00:00:03.000"_s), true},
        {"typing an end", field("edSelectionEnd", u"00:00:05.000"_s)},
        {"typing a position", field("edCurrentPosition", u"00:00:07.000"_s), true},
        {"selecting behind it", select(2.0, 4.0), true},
        {"seeking into it", seek(3.0), true},
        {"stopping again", button("btnStop"), true},
        {"seeking while stopped", seek(5.0), true},
        {"a device", [](auto& w) { w.SetAudioOutputDevice(QMediaDevices::defaultAudioOutput()); }, true},
        {"looping", [](auto& w) { w.SetLoop(true); }},
        {"clicking", [](auto& w) { Click(*w.template findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s)); },
         true},
        {"a delay", [](auto& w) { w.SetDelay(1.0); }},
        {"no delay", [](auto& w) { w.SetDelay(0.0); }},
        {"settings", button("btnSettings")},
        {"muting", button("btnMute")},
        {"a volume", [](auto& w) { w.template findChild<QSlider*>(u"hSliderVolume"_s)->setValue(30); }},
        {"resting after all that", LetRest},
        {"selecting while stopped", select(2.0, 4.0), true},
        {"resting with a selection", LetRest},
        {"a snippet", [=](auto& w) { w.CreateSnippet(folder + u"/snippet.wav"_s); }},
        {"resting after the snippet", LetRest},
        {"seeking before the channel", seek(5.0), true},
        {"a channel", [](auto& w) { w.SetSelectedChannel(WavFile::ChannelLeft); }, true},
        {"resting with the channel", LetRest, true},
        {"seeking in the channel", seek(6.0), true},
        {"the left button only",
         [](auto& w) { w.SetInteractions(BGFXWaveformWidget::Interaction::LeftButtonOnly); }},
        {"asking for a menu", AskForMenu},
        {"stopping playback", [](auto& w) { w.StopPlayback(); }, true},
        {"a file that does not play",
         [=](auto& w) {
             bool isTold = false;
             const QObject context;
             QObject::connect(&w, &AudioPlayerWidget::PlaybackFailed, &context, [&] { isTold = true; });
             w.SetAudioFile(folder + u"/empty.wav"_s);
             WaitFor(w, [&](auto&) { return isTold; });
         }},
        {"no file", [](auto& w) { w.Reset(); }},
        {"files that the program chooses", [](auto& w) { w.SetProgramChoosesFiles(true); }},
        {"asking for one", button("btnLoadFile")},
    };
}

/** At the first emission, or only at one that comes because of one thing. */
inline int DeleteAt(bool isOfWaveform, int signal, const QString& folder, int onlyAt)
{
    // Qt then uses controls longer after their signals.
    QAccessible::setActive(true);
    auto* const widget = new AudioPlayerWidget;
    auto* const waveform = widget->findChild<BGFXWaveformWidget*>();
    const QObject& sender = isOfWaveform ? static_cast<QObject&>(*waveform) : *widget;
    Deleter deleter(*widget, sender, sender.metaObject()->method(signal));
    const Things things = ThingsToDo(folder);
    for (int i = 0; i < things.size(); ++i) {
        deleter.SetArmed(onlyAt == always || onlyAt == i);
        things[i].what(*widget);
        if (i == onlyAt && !deleter.HasDeleted()) {
            WaitFor(*widget, [](auto&) { return false; });
        }
        if (deleter.HasDeleted()) {
            QThreadPool::globalInstance()->waitForDone();
            // Nothing tells when what was under way in Qt has come to its end.
            QTest::qWait(300);
            return 0;
        }
        if (i == onlyAt) {
            break;
        }
    }
    delete widget;
    return Deleter::neverEmitted;
}

/** Writes the files that DeleteAt() needs. */
inline bool MakeFiles(const QTemporaryDir& folder)
{
    QFile empty(folder.filePath(u"empty.wav"_s));
    return QDir(folder.path()).mkdir(u"copies"_s) && empty.open(QIODevice::WriteOnly) &&
           empty.write(WavTest::WavBytes{.sampleRate = 441000}.Build()) > 0 &&
           WriteToneFile(folder.filePath(u"tone.wav"_s), {.seconds = 20.0}) &&
           WriteToneFile(folder.filePath(u"other.wav"_s), {.seconds = 20.0});
}

/** Runs DeleteAt() as a program of its own. */
inline void RunDeletion(bool isOfWaveform, int signal, const QString& folder, int onlyAt)
{
    RunAsOwnProgram({u"delete"_s, QString::number(int(isOfWaveform)), QString::number(signal), folder,
                     QString::number(onlyAt)},
                    Silence::Fails);
}

template<typename Test>
int Main(int argc, char** argv)
{
    if (argc == 6 && qstrcmp(argv[1], "delete") == 0) {
        const QApplication application(argc, argv);
        return DeleteAt(QByteArray(argv[2]) == "1", QByteArray(argv[3]).toInt(), QString::fromLocal8Bit(argv[4]),
                        QByteArray(argv[5]).toInt());
    }
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace DeletedPlayers
