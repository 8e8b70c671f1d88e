#include "Languages.h"
#include "PlayerWindows.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Version.h>

#include <QtCore/QDir>
#include <QtCore/QLibraryInfo>
#include <QtCore/QMutex>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTranslator>
#include <QtCore/QXmlStreamReader>
#include <QtGui/QAction>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <set>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

namespace {

const QString Root = QStringLiteral(VANTOR_SOURCE_DIR);
const QString Recording = QStringLiteral(VANTOR_RECORDING);
const QStringList Languages{u"de"_s, u"es"_s, u"fr"_s, u"ja"_s};

/** A context and a text. */
using Text = std::pair<QString, QString>;

struct Entry
{
    Text text;
    QString translation;
    bool isFinished;
};

/** Marks every text that is translated, and keeps in mind which were. */
class Marks : public QTranslator
{
public:
    Marks() { QCoreApplication::installTranslator(this); }
    ~Marks() override { QCoreApplication::removeTranslator(this); }
    Q_DISABLE_COPY_MOVE(Marks)

    // Any thread.
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        const QMutexLocker lock(&m_mutex);
        m_asked.emplace(QString::fromUtf8(context), QString::fromUtf8(text));
        return u'⟦' + QString::fromUtf8(text) + u'⟧';
    }
    bool isEmpty() const override { return false; }

    std::set<Text> Asked() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_asked;
    }

    /** What is not marked. */
    static QString Rest(QString text)
    {
        static const QRegularExpression marked(u"⟦[^⟦⟧]*⟧"_s);
        while (text.contains(marked)) {
            text.remove(marked);
        }
        return text;
    }

private:
    mutable QMutex m_mutex;
    mutable std::set<Text> m_asked;
};

/** Of a text that no language changes: names, and what the file says of itself. */
bool MayStay(const QString& text)
{
    static const QStringList names{
        u"vantorAudioEngine "_s + vantoraudio::AudioEngine::libVersionString(),
        QFileInfo(Recording).fileName(),
        QDir::toNativeSeparators(QFileInfo(Recording).absolutePath()),
        QDir::toNativeSeparators(Recording),
        u"WAV / WAVE (Waveform Audio)"_s,
        u"PCM signed 16-bit little-endian"_s,
    };
    const QList<QAudioDevice> devices = QMediaDevices::audioOutputs();
    return names.contains(text) || std::any_of(devices.cbegin(), devices.cend(), [&](const QAudioDevice& device) {
               return device.description() == text;
           });
}

/** Not a letter that names a key, a unit of sizes, or a pattern of file names. */
bool HasWords(QString text)
{
    static const QRegularExpression names(uR"(\b[A-Z]\b|\b[kM]i?B\b|\(\*[^)]*\))"_s);
    text.remove(names);
    return std::any_of(text.cbegin(), text.cend(), [](QChar letter) { return letter.isLetter(); });
}

/** Collects the texts on the screen that are not marked. */
class Findings
{
public:
    void LookAtEverything()
    {
        for (const QWidget* widget : QApplication::allWidgets()) {
            if (!qobject_cast<const QFileDialog*>(widget->window())) {
                LookAt(*widget);
            }
        }
    }

    /** Of Qt's file dialogs only what the program adds: the rest names files and folders. */
    void LookAtFileDialog(const QFileDialog& dialog)
    {
        LookAt(dialog.windowTitle(), dialog);
        LookAt(dialog.nameFilters().join(u' '), dialog);
    }

    QStringList Bypassing() const { return m_bypassing; }

private:
    void LookAt(const QWidget& widget)
    {
        LookAtTextsOf(widget);
        for (const QAction* action : widget.actions()) {
            LookAtTextsOf(*action);
        }
        if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
            for (int i = 0; i < box->count(); ++i) {
                LookAt(box->itemText(i), widget);
            }
        }
    }

    void LookAtTextsOf(const QObject& object)
    {
        for (const char* name : {"text", "title", "windowTitle", "toolTip", "statusTip", "whatsThis",
                                 "accessibleName", "accessibleDescription", "placeholderText"}) {
            LookAt(object.property(name).toString(), object);
        }
    }

    void LookAt(const QString& text, const QObject& object)
    {
        if (!MayStay(text) && HasWords(Marks::Rest(text))) {
            m_bypassing.append(QLatin1StringView(object.metaObject()->className()) + u' ' + object.objectName() +
                               u": "_s + text);
        }
    }

    QStringList m_bypassing;
};

/** Triggers an action that opens a dialog, looks at it, and closes it. */
bool LookAtDialogOf(QAction& action, Findings& findings)
{
    bool hasLooked = false;
    QTimer look;
    look.callOnTimeout([&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog) {
            return;
        }
        hasLooked = true;
        if (const auto* files = qobject_cast<const QFileDialog*>(dialog)) {
            findings.LookAtFileDialog(*files);
        }
        findings.LookAtEverything();
        dialog->reject();
    });
    look.start(std::chrono::milliseconds(20));
    action.trigger();
    return QTest::qWaitFor([&] { return hasLooked && !QApplication::activeModalWidget(); });
}

QList<QAction*> ActionsWithDialogs(const PlayerWindow& window)
{
    QList<QAction*> found;
    for (QAction* action : window.findChildren<QAction*>()) {
        if (action->text().contains(u'…') && action->isEnabled()) {
            found.append(action);
        }
    }
    return found;
}

QList<Entry> EntriesOf(const QString& path)
{
    QFile file(path);
    QList<Entry> entries;
    if (!file.open(QFile::ReadOnly)) {
        return entries;
    }
    QXmlStreamReader xml(&file);
    QString context;
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == "name"_L1) {
            context = xml.readElementText();
        } else if (xml.name() == "source"_L1) {
            source = xml.readElementText();
        } else if (xml.name() == "translation"_L1) {
            const bool isFinished = !xml.attributes().hasAttribute("type"_L1);
            entries.append({{context, source}, xml.readElementText(), isFinished});
        }
    }
    return xml.hasError() ? QList<Entry>() : entries;
}

/** In an order of its own: versions of lupdate differ in theirs. */
QStringList LinesOf(const QString& path)
{
    QStringList lines;
    for (const Entry& entry : EntriesOf(path)) {
        lines.append(entry.text.first + u": "_s + entry.text.second + u" = "_s + entry.translation);
    }
    lines.sort();
    return lines;
}

/** Relative to the project. */
QStringList TranslationFiles()
{
    QStringList files;
    for (const QString& language : Languages) {
        files << u"translations/vantorAudioEngine_%1.ts"_s.arg(language)
              << u"examples/player/translations/player_%1.ts"_s.arg(language);
    }
    return files;
}

std::set<Text> TextsOf(const QString& language)
{
    std::set<Text> texts;
    for (const QString& file : TranslationFiles()) {
        if (file.endsWith(u'_' + language + u".ts"_s)) {
            for (const Entry& entry : EntriesOf(Root + u'/' + file)) {
                texts.insert(entry.text);
            }
        }
    }
    return texts;
}

QStringList PlaceholdersOf(const QString& text)
{
    static const QRegularExpression placeholder(u"%L?[0-9n]+"_s);
    QStringList found;
    for (const QRegularExpressionMatch& match : placeholder.globalMatch(text)) {
        found.append(match.captured());
    }
    found.sort();
    return found;
}

/** The letter behind the only mark of a menu's underlined letter, in upper case. */
QString MnemonicOf(const QString& text)
{
    static const QRegularExpression mark(u"&([^&])"_s);
    return mark.match(text).captured(1).toUpper();
}

/** Texts of the menu whose underlined letters an earlier text has already. */
QStringList Ambiguous(const QList<QAction*>& actions)
{
    QStringList letters;
    QStringList found;
    for (const QAction* action : actions) {
        const QString letter = MnemonicOf(action->text());
        if (letters.contains(letter)) {
            found.append(action->text());
        }
        if (!letter.isEmpty()) {
            letters.append(letter);
        }
    }
    return found;
}

/** Installs the translations of a language for as long as it lives. */
class Language
{
public:
    explicit Language(const QString& name)
    {
        QLocale::setDefault(QLocale(name));
        InstallTranslations();
    }
    ~Language()
    {
        qDeleteAll(qApp->findChildren<QTranslator*>());
        QLocale::setDefault(QLocale::system());
    }
    Q_DISABLE_COPY_MOVE(Language)
};

} // namespace

class TranslationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void everyTextOnTheScreenCanBeTranslated()
    {
        const Marks marks;
        Findings findings;
        PlayerWindow window;
        window.show();
        findings.LookAtEverything();
        QVERIFY(!Open(window, u"/nowhere.wav"_s));
        QVERIFY(!window.FailureText().isEmpty());
        findings.LookAtEverything();
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(0.5, 1.0);
        const QList<QAction*> actions = ActionsWithDialogs(window);
        QVERIFY2(actions.size() >= 9, qPrintable(QString::number(actions.size())));
        for (QAction* action : actions) {
            QVERIFY2(LookAtDialogOf(*action, findings), qPrintable(action->text()));
        }
        for (QMenu* menu : window.findChildren<QMenu*>()) {
            Q_EMIT menu->aboutToShow();
        }
        findings.LookAtEverything();
        QVERIFY2(findings.Bypassing().isEmpty(), qPrintable(findings.Bypassing().join(u'\n')));

        const std::set<Text> listed = TextsOf(u"de"_s);
        QStringList missing;
        for (const auto& [context, text] : marks.Asked()) {
            static const QRegularExpression isOfQt(u"^Q[A-Z]"_s);
            if (!text.isEmpty() && !context.contains(isOfQt) && !listed.contains({context, text})) {
                missing.append(context + u": "_s + text);
            }
        }
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(u'\n')));
    }

    void everyEntryIsTranslated_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString& file : TranslationFiles()) {
            QTest::addRow("%s", qPrintable(file)) << file;
        }
    }

    void everyEntryIsTranslated()
    {
        QFETCH(const QString, file);
        const QList<Entry> entries = EntriesOf(Root + u'/' + file);
        QVERIFY(entries.size() > 50);
        for (const Entry& entry : entries) {
            const auto& [text, translation, isFinished] = entry;
            QVERIFY2(isFinished && !translation.trimmed().isEmpty(), qPrintable(text.second));
            QCOMPARE(PlaceholdersOf(translation), PlaceholdersOf(text.second));
            QCOMPARE(translation.count(u'&'), text.second.count(u'&'));
            QCOMPARE(translation.contains(u'…'), text.second.contains(u'…'));
        }
    }

    void theFilesListTheTextsOfTheSources()
    {
        const QTemporaryDir copies;
        QProcess update;
        for (const QString& file : TranslationFiles()) {
            QVERIFY(QDir(copies.path()).mkpath(QFileInfo(file).path()));
            QVERIFY(QFile::copy(Root + u'/' + file, copies.filePath(file)));
        }
        update.start(Root + u"/scripts/update-translations.sh"_s, {copies.path()});
        QVERIFY(update.waitForFinished(60000));
        if (update.readAllStandardError().contains("lupdate is not here")) {
            QSKIP("lupdate is not here");
        }
        QCOMPARE(update.exitCode(), 0);
        for (const QString& file : TranslationFiles()) {
            QCOMPARE(LinesOf(copies.filePath(file)), LinesOf(Root + u'/' + file));
        }
    }

    void theWindowSpeaksTheLanguage_data()
    {
        if (!VANTOR_IS_TRANSLATED) {
            QSKIP("built without lrelease");
        }
        QTest::addColumn<QString>("fileMenu");
        QTest::addColumn<QString>("loadButton");
        QTest::addColumn<QString>("stopAction");
        QTest::addColumn<QString>("timeOnTheRuler");
        QTest::newRow("de") << u"&Datei"_s << u"Audiodatei laden"_s << u"Stopp"_s << u"5.100 s"_s;
        QTest::newRow("es") << u"&Archivo"_s << u"Cargar archivo de audio"_s << u"Detener"_s << u"5.100 s"_s;
        QTest::newRow("fr") << u"&Fichier"_s << u"Charger un fichier audio"_s << u"Arrêter"_s << u"5.100 s"_s;
        QTest::newRow("ja") << u"ファイル(&F)"_s << u"オーディオファイルを読み込む"_s << u"停止"_s
                            << u"5.100 秒"_s;
        QTest::newRow("en") << u"&File"_s << u"Load audio file"_s << u"Stop"_s << u"5.100 sec"_s;
        QTest::newRow("fi") << u"&File"_s << u"Load audio file"_s << u"Stop"_s << u"5.100 sec"_s;
    }

    void theWindowSpeaksTheLanguage()
    {
        QFETCH(const QString, fileMenu);
        QFETCH(const QString, loadButton);
        QFETCH(const QString, stopAction);
        QFETCH(const QString, timeOnTheRuler);
        const Language language(QString::fromLatin1(QTest::currentDataTag()));
        PlayerWindow window;
        QCOMPARE(window.menuBar()->actions().constFirst()->text(), fileMenu);
        QCOMPARE(ChildNamed<QPushButton>(window, u"btnLoadFile"_s)->text(), loadButton);
        QCOMPARE(window.findChild<QAction*>(u"Stop"_s)->text(), stopAction);
        QCOMPARE(BGFXWaveformWidget::FormatToTime(5.1), timeOnTheRuler);
        QCOMPARE(Ambiguous(window.menuBar()->actions()), QStringList());
        for (const QMenu* menu : window.findChildren<QMenu*>()) {
            QCOMPARE(Ambiguous(menu->actions()), QStringList());
        }
    }

    void theTextsOfQtFollow()
    {
        if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + u"/qtbase_de.qm"_s)) {
            QSKIP("Qt's translations are not here");
        }
        const Language language(u"de"_s);
        const QDialogButtonBox buttons(QDialogButtonBox::Cancel);
        QCOMPARE(buttons.button(QDialogButtonBox::Cancel)->text(), u"Abbrechen"_s);
    }

    void theProgramTakesTheLanguageOfTheSystem_data()
    {
        if (!VANTOR_IS_TRANSLATED) {
            QSKIP("built without lrelease");
        }
        QTest::addColumn<QString>("languages");
        QTest::addColumn<QString>("help");
        QTest::newRow("German") << u"de"_s << u"Zeigt eine Audiodatei und spielt sie ab."_s;
        QTest::newRow("a language that has no translation, and then French")
            << u"fi:fr"_s << u"Affiche et lit un fichier audio."_s;
        QTest::newRow("English before French") << u"en_GB:en:fr"_s << u"Shows and plays an audio file."_s;
    }

    void theProgramTakesTheLanguageOfTheSystem()
    {
        QFETCH(const QString, languages);
        QFETCH(const QString, help);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LANG"_s, u"C.UTF-8"_s);
        environment.remove(u"LC_ALL"_s);
        environment.insert(u"LANGUAGE"_s, languages);
        QProcess player;
        player.setProcessEnvironment(environment);
        player.start(QStringLiteral(VANTOR_PLAYER), {u"--help"_s});
        QVERIFY(player.waitForFinished());
        const QString printed = QString::fromUtf8(player.readAllStandardOutput());
        QVERIFY2(printed.contains(help), qPrintable(printed));
    }
};

int main(int argc, char* argv[])
{
    return RunApart<TranslationsTest>(argc, argv);
}

#include "tst_translations.moc"
