#include "tests/support/AudioPrograms.h"
#include "tests/support/TemporaryFiles.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <memory>

using namespace Qt::Literals::StringLiterals;

/** Decodings that outlive the window that asked for them. */
class TestDecoderWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(AudioPrograms::MakeTone(m_files.Path(u"tone.wav"_s), 44100, 2, 30.0));
        QVERIFY(AudioPrograms::Encode(u"mp3"_s, m_files.Path(u"tone.wav"_s), m_files.Path(u"tone.mp3"_s)));
        QCOMPARE(Decode(u"expected.wav"_s), WavFile::Success);
    }

    void survivesTheEndOfItsWindow_data()
    {
        QTest::addColumn<bool>("isDestroyed");
        QTest::addRow("closed") << false;
        QTest::addRow("closed and destroyed") << true;
    }
    void survivesTheEndOfItsWindow()
    {
        QFETCH(const bool, isDestroyed);
        QApplication::setQuitOnLastWindowClosed(false);
        auto owner = std::make_unique<QWidget>();
        QWidget* const window = owner.get();
        window->show();
        bool isInside = false;
        int result = 1;
        // The call comes from an event of the window, which may be gone before the call returns.
        QTimer::singleShot(0, window, [&] { result = Decode(u"out.wav"_s); });
        QTimer::singleShot(5, this, [&] {
            isInside = result == 1;
            window->close();
            if (isDestroyed) {
                owner.reset();
            }
        });
        QTRY_VERIFY_WITH_TIMEOUT(result != 1, 60000);
        QVERIFY(isInside);
        QCOMPARE(owner == nullptr, isDestroyed);
        QCOMPARE(result, int(WavFile::Success));
        QCOMPARE(TemporaryFiles::Read(m_files.Path(u"out.wav"_s)),
                 TemporaryFiles::Read(m_files.Path(u"expected.wav"_s)));
    }

    void endsWhenClosingTheWindowEndsTheProgram()
    {
        QApplication::setQuitOnLastWindowClosed(true);
        QWidget window;
        window.show();
        int result = 1;
        QTimer::singleShot(0, this, [&] {
            QTimer::singleShot(0, &window, &QWidget::close);
            result = Decode(u"unfinished.wav"_s);
        });
        QApplication::exec();
        QCOMPARE(result, int(WavFile::ErrorInvalidFormat));
        QVERIFY(!QFile::exists(m_files.Path(u"unfinished.wav"_s)));
    }

private:
    WavFile::AudioEngineReturnValue Decode(const QString& outName)
    {
        return Decoder::Convert(m_files.Path(u"tone.mp3"_s), m_files.Path(outName), 96000);
    }

    TemporaryFiles m_files;
};

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    TestDecoderWindow test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_decoderwindow.moc"
