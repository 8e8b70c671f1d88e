#pragma once

#include "tests/support/Deleter.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QDir>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThreadPool>
#include <QtGui/QAccessible>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <functional>
#include <vector>

/** Programs that delete a player in a slot, at many moments of its life. */
namespace DeletedPlayers {

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;
using Things = std::vector<std::function<void(AudioPlayerWidget&)>>;

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

/** What comes before the first position. */
inline Things Preparations(const QString& folder)
{
    return {
        [=](auto& w) { w.SetWritableDirectoryPath(folder + u"/copies"_s); },
        [](auto& w) { w.resize(800, 400); },
        [](auto& w) { w.show(); },
        [](auto& w) { w.SetEditMode(true); },
        [](auto& w) { w.UseFlexibleSizes(); },
        [](auto& w) { w.SetPositionMovesSmoothly(true); },
        [](auto& w) { w.SetPlaybackRate(2.0); },
        [](auto& w) { w.SetChannelChangeKeepsPlace(true); },
        [=](auto& w) { w.LoadFile(folder + u"/missing.wav"_s); },
        LetRest,
        [=](auto& w) { w.LoadFile(folder + u"/tone.wav"_s); },
        [](auto& w) { w.CancelLoad(); },
        [=](auto& w) { w.LoadFile(folder + u"/tone.wav"_s); },
        LetRest,
        [=](auto& w) { w.SetAudioFile(folder + u"/other.wav"_s); },
        LetRest,
    };
}

/** Everything that makes the widgets emit, one thing after the other. */
inline Things ThingsToDo(const QString& folder)
{
    Things things = Preparations(folder);
    const Things uses{
        [](auto& w) { w.Play(); },
        [](auto& w) { w.UpdateAudioPosition(5.0); },
        [](auto& w) { QTest::qWait(w.IsPlaying() ? 300 : 0); },
        [](auto& w) {
            w.SetSelectedSnippet({2.0, 4.0});
        },
        [](auto& w) {
            w.SetSelectedSnippet({0.0, 0.0});
        },
        [](auto& w) { w.ShowRange(1.0, 2.0); },
        [](auto& w) { w.template findChild<QPushButton*>(u"btnStop"_s)->click(); },
        [](auto& w) { w.Play(); },
        [](auto& w) { w.UpdateAudioPosition(5.0); },
        [](auto& w) {
            w.SetSelectedSnippet({2.0, 4.0});
        },
        [](auto& w) { Type(*w.template findChild<QLineEdit*>(u"edSelectionStart"_s), u"00:00:03.000"_s); },
        [](auto& w) { Type(*w.template findChild<QLineEdit*>(u"edSelectionEnd"_s), u"00:00:05.000"_s); },
        [](auto& w) { Type(*w.template findChild<QLineEdit*>(u"edCurrentPosition"_s), u"00:00:07.000"_s); },
        [](auto& w) {
            w.SetSelectedSnippet({2.0, 4.0});
        },
        [](auto& w) { w.UpdateAudioPosition(3.0); },
        [](auto& w) { w.template findChild<QPushButton*>(u"btnStop"_s)->click(); },
        [](auto& w) { w.UpdateAudioPosition(5.0); },
        [](auto& w) { w.SetAudioOutputDevice(QMediaDevices::defaultAudioOutput()); },
        [](auto& w) { w.SetLoop(true); },
        [](auto& w) { Click(*w.template findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s)); },
        [](auto& w) { w.SetDelay(1.0); },
        [](auto& w) { w.SetDelay(0.0); },
        [](auto& w) { w.template findChild<QPushButton*>(u"btnSettings"_s)->click(); },
        [](auto& w) { w.template findChild<QPushButton*>(u"btnMute"_s)->click(); },
        [](auto& w) { w.template findChild<QSlider*>(u"hSliderVolume"_s)->setValue(30); },
        LetRest,
        [](auto& w) {
            w.SetSelectedSnippet({2.0, 4.0});
        },
        LetRest,
        [=](auto& w) { w.CreateSnippet(folder + u"/snippet.wav"_s); },
        LetRest,
        [](auto& w) { w.UpdateAudioPosition(5.0); },
        [](auto& w) { w.SetSelectedChannel(WavFile::ChannelLeft); },
        LetRest,
        [](auto& w) { w.UpdateAudioPosition(5.0); },
        [](auto& w) { w.StopPlayback(); },
        [](auto& w) { w.Reset(); },
    };
    things.insert(things.end(), uses.begin(), uses.end());
    return things;
}

/** At the first emission, or only at one that comes while one thing is done. */
inline int DeleteAt(bool isOfWaveform, int signal, const QString& folder, int onlyAt)
{
    // Qt then uses controls longer after their signals.
    QAccessible::setActive(true);
    auto* const widget = new AudioPlayerWidget;
    auto* const waveform = widget->findChild<BGFXWaveformWidget*>();
    const QObject& sender = isOfWaveform ? static_cast<QObject&>(*waveform) : *widget;
    Deleter deleter(*widget, sender, sender.metaObject()->method(signal));
    const Things things = ThingsToDo(folder);
    for (int i = 0; i < int(things.size()); ++i) {
        deleter.SetArmed(onlyAt == always || onlyAt == i);
        things[i](*widget);
        if (deleter.HasDeleted()) {
            // What was under way comes to its end.
            QThreadPool::globalInstance()->waitForDone();
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
    return QDir(folder.path()).mkdir(u"copies"_s) &&
           WriteToneFile(folder.filePath(u"tone.wav"_s), {.seconds = 20.0}) &&
           WriteToneFile(folder.filePath(u"other.wav"_s), {.seconds = 20.0});
}

/** Runs DeleteAt() as a program of its own. */
inline void RunDeletion(bool isOfWaveform, int signal, const QString& folder, int onlyAt)
{
    RunAsOwnProgram({u"delete"_s, QString::number(int(isOfWaveform)), QString::number(signal), folder,
                     QString::number(onlyAt)});
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
