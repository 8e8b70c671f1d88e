#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/PlayerSetup.h"

#include <QtCore/QMetaMethod>
#include <QtWidgets/QApplication>

#include <type_traits>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Access = PlayerSetup::Access;
using Widget = AudioPlayerWidget;

namespace {

template<typename Expected, typename Actual>
constexpr bool Is(Actual)
{
    return std::is_same_v<Expected, Actual>;
}

using Snippet = std::pair<double, double>;

// What programs are compiled against.
static_assert(std::is_base_of_v<QWidget, Widget>);
static_assert(std::is_constructible_v<Widget, QWidget*>);
static_assert(Is<void (Widget::*)(const QString&)>(&Widget::SetAudioFile));
static_assert(Is<void (Widget::*)()>(&Widget::Reset));
static_assert(Is<void (Widget::*)()>(&Widget::Close));
static_assert(Is<bool (Widget::*)(const QString&, const QAudioFormat&)>(&Widget::Convert));
static_assert(Is<double (Widget::*)() const>(&Widget::GetAudioDuration));
static_assert(Is<QAudioFormat (Widget::*)() const>(&Widget::GetAudioFileFormat));
static_assert(Is<QString (Widget::*)() const>(&Widget::GetAudioFileName));
static_assert(Is<QString (Widget::*)() const>(&Widget::GetOriginalAudioFilePath));
static_assert(Is<QString (Widget::*)() const>(&Widget::GetWritableDirectoryPath));
static_assert(Is<void (Widget::*)(const QString&)>(&Widget::SetWritableDirectoryPath));
static_assert(Is<bool (Widget::*)() const>(&Widget::IsBusy));
static_assert(Is<double (Widget::*)() const>(&Widget::GetDelay));
static_assert(Is<void (Widget::*)(double)>(&Widget::SetDelay));
static_assert(Is<void (Widget::*)(bool)>(&Widget::SetEditMode));
static_assert(Is<void (Widget::*)(const QString&)>(&Widget::SetHint));
static_assert(Is<void (Widget::*)(bool)>(&Widget::SetScrollBackToZoomOut));
static_assert(Is<WavFile::ChannelFormat (Widget::*)() const>(&Widget::GetSelectedChannel));
static_assert(Is<void (Widget::*)(WavFile::ChannelFormat)>(&Widget::SetSelectedChannel));
static_assert(Is<Snippet (Widget::*)() const>(&Widget::GetSelectedSnippet));
static_assert(Is<void (Widget::*)(Snippet)>(&Widget::SetSelectedSnippet));
static_assert(Is<void (Widget::*)(const QString&)>(&Widget::CreateSnippet));
static_assert(Is<void (Widget::*)()>(&Widget::StopPlayback));
static_assert(Is<void (Widget::*)(double)>(&Widget::UpdateAudioPosition));
static_assert(Is<void (Widget::*)(const QAudioDevice&)>(&Widget::SetAudioOutputDevice));
static_assert(Is<void (Widget::*)(int)>(&Widget::SetAudioPlayBackVolume));
static_assert(Is<void (Widget::*)(bool)>(&Widget::SetAudioPlayBackMute));
static_assert(Is<void (Widget::*)(const QString&)>(&Widget::SetAudioPositionIcon));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetAudioPositionMarkerColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetAudioSelectionColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetBackgroundColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetFrameColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetGridColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetScaleColor));
static_assert(Is<void (Widget::*)(const QColor&)>(&Widget::SetWaveformColor));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconPlay));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconPause));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconStop));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconLoop));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconSettings));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconMute));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconUnmute));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconLoad));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconIncrement));
static_assert(Is<void (Widget::*)(const QIcon&)>(&Widget::SetIconDecrement));

/** The widget's own methods of a kind, in the order of their declaration. */
QStringList Methods(QMetaMethod::MethodType type)
{
    const QMetaObject& meta = Widget::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type) {
            methods.append(QString::fromLatin1(meta.method(i).methodSignature()));
        }
    }
    return methods;
}

QMetaMethod MethodOf(const QString& signature)
{
    return Widget::staticMetaObject.method(
        Widget::staticMetaObject.indexOfMethod(signature.toLatin1().constData()));
}

const TestAudio stereo{.coding = S16, .channels = 2, .rate = 8000, .frames = 8000};

/** Writes down what a player tells, but not how often it tells the same thing in a row, nor positions: when the
 * media framework reports them differs from version to version. */
class SignalLog : public QStringList
{
public:
    explicit SignalLog(Widget& player)
    {
        const auto write = [&](auto signal, const char* what) {
            QObject::connect(&player, signal, &m_context, [this, what] { Write(QLatin1StringView(what)); });
        };
        write(&Widget::AudioFileChanged, "file");
        write(&Widget::CreateSnippetFinished, "snippet");
        write(&Widget::WaveFormSelectionChanged, "selection");
        write(&Widget::SceneRectChanged, "range");
        QObject::connect(&player, &Widget::BusyChanged, &m_context,
                         [this](bool isBusy) { Write(isBusy ? u"busy"_s : u"idle"_s); });
        QObject::connect(&player, &Widget::ProgressChanged, &m_context,
                         [this](int, int, int, const QString& text) { Write(text); });
    }

private:
    void Write(const QString& what)
    {
        if (isEmpty() || last() != what) {
            append(what);
        }
    }

    QObject m_context;
};

} // namespace

/** What programs connect to and call, and in which order they hear of what happens. */
class PlayerInterfaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void declaresItsSignalsInOrder();
    void declaresItsSlots();
    void keepsItsSlotsPrivate();
    void tellsOfALoadInOrder();
    void tellsOfAnotherFileInOrder();
    void tellsOfAChannelInOrder();
    void tellsOfASnippetInOrder();
};

void PlayerInterfaceTest::declaresItsSignalsInOrder()
{
    QCOMPARE(
        Methods(QMetaMethod::Signal),
        QStringList({u"AudioFileChanged(QString)"_s, u"AudioPositionChanged(double)"_s,
                     u"ProgressChanged(int,int,int,QString)"_s, u"CreateSnippetFinished(QString)"_s,
                     u"WaveFormSelectionChanged(std::pair<double,double>)"_s, u"AudioPlayBackVolumeChanged(int)"_s,
                     u"AudioPlayBackMuteChanged(bool)"_s, u"SettingsButtonClicked()"_s,
                     u"SceneRectChanged(QRectF)"_s, u"SceneRectChangeRequested(QRectF)"_s, u"BusyChanged(bool)"_s,
                     u"LoadStarted(QString)"_s, u"LoadFinished(QString)"_s,
                     u"LoadFailed(QString,vantoraudio::AudioEngine::AudioFileInfo::Problem,QString)"_s,
                     u"LoadCancelled(QString)"_s, u"ContextMenuRequested(QPoint,double)"_s, u"LoopChanged(bool)"_s,
                     u"PlaybackFailed(QString)"_s, u"LoadRequested()"_s}));
}

void PlayerInterfaceTest::declaresItsSlots()
{
    QStringList slotNames = Methods(QMetaMethod::Slot);
    slotNames.sort();
    QCOMPARE(slotNames, QStringList({u"GetSamples(double,double,int)"_s,
                                     u"OnAudioPositionChanged(qlonglong)"_s,
                                     u"OnAudioStateChanged(QMediaPlayer::PlaybackState)"_s,
                                     u"OnBtnDecSelectionEndClicked()"_s,
                                     u"OnBtnDecSelectionStartClicked()"_s,
                                     u"OnBtnIncSelectionEndClicked()"_s,
                                     u"OnBtnIncSelectionStartClicked()"_s,
                                     u"OnBtnLoadFileClicked()"_s,
                                     u"OnBtnLoopClicked()"_s,
                                     u"OnBtnMuteClicked()"_s,
                                     u"OnBtnPlayPauseClicked()"_s,
                                     u"OnBtnStopClicked()"_s,
                                     u"OnChannelSelectionFinished(int)"_s,
                                     u"OnCmbboxChannelSelectorCurrentIndexChanged(int)"_s,
                                     u"OnCurrentPositionEditingFinished()"_s,
                                     u"OnHSliderVolumeValueChanged(int)"_s,
                                     u"OnNewSamples()"_s,
                                     u"OnProgressChanged(int,int,int,QString)"_s,
                                     u"OnSelectionEndEditingFinished()"_s,
                                     u"OnSelectionStartEditingFinished()"_s,
                                     u"OnSnippetCreateFinished(int)"_s,
                                     u"OnWaveformAudioPositionChanged(double)"_s,
                                     u"OnWaveformSelectionChanged(std::pair<double,double>)"_s}));
}

void PlayerInterfaceTest::keepsItsSlotsPrivate()
{
    for (const QString& signature : Methods(QMetaMethod::Slot)) {
        QVERIFY2(MethodOf(signature).access() == QMetaMethod::Private, qPrintable(signature));
    }
}

void PlayerInterfaceTest::tellsOfALoadInOrder()
{
    PlayerSetup setup;
    const SignalLog log(*setup.player);
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    QCOMPARE(log, QStringList({u"selection"_s, u"file"_s, u"Updating..."_s, u"Updated"_s}));
}

void PlayerInterfaceTest::tellsOfAnotherFileInOrder()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"one.wav"_s, stereo.File()));
    setup.player->UpdateAudioPosition(0.5);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    QCoreApplication::processEvents();
    const SignalLog log(*setup.player);
    QVERIFY(setup.Load(u"two.wav"_s, stereo.File()));
    QCOMPARE(log, QStringList({u"selection"_s, u"file"_s, u"Updating..."_s, u"Updated"_s}));
}

void PlayerInterfaceTest::tellsOfAChannelInOrder()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    const SignalLog log(*setup.player);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle() && setup.HasRead());
    QCOMPARE(log, QStringList(
                      {u"busy"_s, u"Updating..."_s, u"idle"_s, u"selection"_s, u"Updating..."_s, u"Updated"_s}));
}

void PlayerInterfaceTest::tellsOfASnippetInOrder()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    setup.player->SetSelectedSnippet({0.25, 0.5});
    QCoreApplication::processEvents();
    const SignalLog log(*setup.player);
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QVERIFY(setup.IsIdle());
    QCOMPARE(log, QStringList({u"busy"_s, u"Creating snippet..."_s, u"idle"_s, u"snippet"_s}));
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerInterfaceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerinterface.moc"
