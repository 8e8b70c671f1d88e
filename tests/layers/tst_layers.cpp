#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

struct Include
{
    QString file;
    QString target;

    QString ToString() const { return file + u" includes "_s + target; }
};

/** A folder, and patterns of the project's own headers that it may include. */
struct Layer
{
    QString folder;
    QString allowed;
};

QStringList SourceFiles(const QString& folder)
{
    QStringList files;
    QDirIterator it(QStringLiteral(VANTOR_SOURCE_DIR "/") + folder, {u"*.h"_s, u"*.cpp"_s}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        files.append(QDir(QStringLiteral(VANTOR_SOURCE_DIR)).relativeFilePath(it.next()));
    }
    files.sort();
    return files;
}

QList<Include> IncludesOf(const QString& file)
{
    static const QRegularExpression line(u"^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]"_s,
                                         QRegularExpression::MultilineOption);
    QFile source(QStringLiteral(VANTOR_SOURCE_DIR "/") + file);
    if (!source.open(QIODevice::ReadOnly)) {
        qFatal("cannot read %s", qPrintable(file));
    }
    QList<Include> includes;
    auto matches = line.globalMatch(QString::fromUtf8(source.readAll()));
    while (matches.hasNext()) {
        includes.append({file, matches.next().captured(1)});
    }
    return includes;
}

QList<Include> IncludesIn(const QString& folder)
{
    QList<Include> includes;
    for (const QString& file : SourceFiles(folder)) {
        includes.append(IncludesOf(file));
    }
    return includes;
}

bool Matches(const QString& text, const QString& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

bool IsOwnHeader(const QString& target)
{
    return Matches(target, u"(engine|playback|render|ui|examples|tests|vantorAudioEngine)/.*"_s);
}

const QStringList AllFolders{u"engine"_s, u"playback"_s, u"render"_s, u"ui"_s, u"examples"_s};
const QString PublicEngine =
    u"vantorAudioEngine/(Export|Version|WavFile|Decoder|AudioFileInfo|AudioImporter)\\.h"_s;

} // namespace

class LayersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFolderIncludesOnlyLowerOnes_data()
    {
        const QString arithmetic = u"engine/samples/Truncation\\.h|vantorAudioEngine/Export\\.h"_s;
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("allowed");
        QTest::addRow("engine knows no player and no widget") << u"engine"_s << (u"engine/.*|"_s + PublicEngine);
        const QString base = u"engine/\\w+\\.h|"_s;
        QTest::addRow("files know nothing of what is in them")
            << u"engine/files"_s << (base + arithmetic + u"|engine/files/.*"_s);
        QTest::addRow("samples know no file but the names of its channels")
            << u"engine/samples"_s << (base + u"engine/samples/.*|vantorAudioEngine/(Export|WavFile)\\.h"_s);
        QTest::addRow("wav decodes nothing")
            << u"engine/wav"_s
            << (base + u"engine/(files|samples|wav)/.*|vantorAudioEngine/(Export|WavFile)\\.h"_s);
        QTest::addRow("decoding writes WAV files by their header alone")
            << u"engine/decoding"_s
            << (base + u"engine/(files|samples|decoding)/.*|engine/wav/WavHeader\\.h|"_s + PublicEngine);
        QTest::addRow("playback asks what a file is, but knows no file class and no widget")
            << u"playback"_s
            << (arithmetic + u"|engine/QtDefects\\.h|engine/files/RegularFile\\.h|playback/.*|"
                             "vantorAudioEngine/(AudioFileInfo|AudioPlayer|HardwareManager)\\.h"_s);
        QTest::addRow("render knows none of the others") << u"render"_s << u"render/.*"_s;
        QTest::addRow("ui/waveform knows no file class and no player")
            << u"ui/waveform"_s
            << (arithmetic + u"|render/.*|ui/waveform/.*|vantorAudioEngine/BGFXWaveformWidget\\.h"_s);
        QTest::addRow("the rules of the view know no drawing")
            << u"ui/waveform/rules"_s << (arithmetic + u"|ui/waveform/rules/.*"_s);
        QTest::addRow("the drawing of the view knows its rules but no widget")
            << u"ui/waveform/drawing"_s << (arithmetic + u"|render/.*|ui/waveform/(drawing|rules)/.*"_s);
        QTest::addRow("ui/player joins them")
            << u"ui/player"_s << u"(engine|playback|ui)/.*|vantorAudioEngine/.*"_s;
        QTest::addRow("examples see the installed headers only") << u"examples"_s << u"vantorAudioEngine/.*"_s;
    }
    void everyFolderIncludesOnlyLowerOnes()
    {
        QFETCH(const QString, folder);
        QFETCH(const QString, allowed);
        const QList<Include> includes = IncludesIn(folder);
        QVERIFY2(!includes.isEmpty(), "the folder is gone, or empty");
        for (const Include& include : includes) {
            if (IsOwnHeader(include.target)) {
                QVERIFY2(Matches(include.target, allowed), qPrintable(include.ToString()));
            }
        }
    }

    void publicHeadersIncludeOnlyLowerOnes_data()
    {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("allowed");
        QTest::addRow("engine") << u"(Export|Version|WavFile|Decoder|AudioFileInfo|AudioImporter)"_s
                                << PublicEngine;
        QTest::addRow("playback and waveform")
            << u"(AudioPlayer|HardwareManager|BGFXWaveformWidget)"_s << u"vantorAudioEngine/Export\\.h"_s;
    }
    void publicHeadersIncludeOnlyLowerOnes()
    {
        QFETCH(const QString, header);
        QFETCH(const QString, allowed);
        for (const Include& include : IncludesIn(u"include"_s)) {
            if (Matches(include.file, u"include/vantorAudioEngine/"_s + header + u"\\.h"_s) &&
                IsOwnHeader(include.target)) {
                QVERIFY2(Matches(include.target, allowed), qPrintable(include.ToString()));
            }
        }
    }

    void outsideLibrariesStandBehindTheirDoors_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("door");
        QTest::addRow("FFmpeg")
            << u"lib(av|sw)\\w+/.*"_s
            << u"engine/(samples/(FFmpegPointers\\.h|(Frame|Pcm)Resampler\\.cpp)|decoding/(AudioStream|DecoderProbe)\\.cpp)"_s;
        QTest::addRow("OpenGL") << u"(QtOpenGL/|QtGui/QOpenGL|QtGui/QOffscreenSurface|GL/|GLES).*"_s
                                << u"render/bgfx/device/OpenGL\\w*\\.(cpp|h)"_s;
        QTest::addRow("bgfx") << u"(bgfx|bimg|bx)/.*"_s << u"render/bgfx/device/bgfx/BgfxApi\\.h"_s;
        // A format is plain data and part of several public functions; what plays or decodes is not.
        QTest::addRow("Qt Multimedia")
            << u"QtMultimedia/(?!QAudioFormat).*|QtMultimedia"_s
            << u"playback/.*|engine/decoding/Decoder(Source)?\\.(h|cpp)|ui/player/.*|examples/.*"_s;
        QTest::addRow("widgets and painting")
            << u"QtWidgets.*|QtSvg.*|QtGui/(QPaint|QImage|QPixmap|QWidget|QWindow).*"_s
            << u"(render|ui/player|examples)/.*|ui/waveform/(drawing/.*|\\w+\\.(cpp|h))"_s;
        QTest::addRow("PulseAudio") << u"pulse/.*"_s << u"playback/SoundServerSinks\\.cpp"_s;
        QTest::addRow("the renderer's shim")
            << u"render/bgfx/bgfx\\.h"_s
            << u"render/.*|ui/waveform/(drawing/Waveform(Geometry|Program)|BGFXWaveform\\w*)\\.(cpp|h)"_s;
        QTest::addRow("the drawing devices") << u"render/bgfx/device/.*"_s << u"render/bgfx/.*"_s;
    }
    void outsideLibrariesStandBehindTheirDoors()
    {
        QFETCH(const QString, library);
        QFETCH(const QString, door);
        for (const QString& folder : AllFolders) {
            for (const Include& include : IncludesIn(folder)) {
                if (Matches(include.target, library)) {
                    QVERIFY2(Matches(include.file, door), qPrintable(include.ToString()));
                }
            }
        }
    }

    void publicHeadersNeedNothingThatIsNotInstalled()
    {
        QVERIFY(SourceFiles(u"include"_s).size() >= 6);
        for (const Include& include : IncludesIn(u"include"_s)) {
            QVERIFY2(Matches(include.target, u"(Qt\\w+|vantorAudioEngine)/.*|[a-z]+"_s),
                     qPrintable(include.ToString()));
        }
    }

    void theTestsSeeTheIncludesAtAll()
    {
        QVERIFY(IncludesIn(u"engine"_s).size() > 10);
        QVERIFY(IncludesIn(u"render"_s).size() > 10);
        QVERIFY(IncludesIn(u"ui/waveform"_s).size() > 10);
    }
};

QTEST_GUILESS_MAIN(LayersTest)
#include "tst_layers.moc"
