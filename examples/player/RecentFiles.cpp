#include "RecentFiles.h"

#include "MenuText.h"
#include "Question.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

#include <chrono>
#include <vector>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QLatin1StringView Key("recentFiles");

/** Files on a disk that does not answer at once count as there: opening one tells more. */
QStringList WithoutThoseThatAreGone(const QStringList& files)
{
    std::vector<Question<bool>> questions;
    for (const QString& path : files) {
        questions.emplace_back([path] { return QFileInfo(path).isFile(); });
    }
    const auto deadline = std::chrono::steady_clock::now() + 500ms;
    QStringList rest;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        if (questions[i].AnswerUntil(deadline).value_or(true)) {
            rest.append(files.at(static_cast<qsizetype>(i)));
        }
    }
    return rest;
}

} // namespace

RecentFiles::RecentFiles(QWidget* parent) : QMenu(tr("Open &recent"), parent)
{
    connect(this, &QMenu::aboutToShow, this, &RecentFiles::Fill);
}

void RecentFiles::Add(const QString& path)
{
    QSettings settings;
    QStringList files = settings.value(Key).toStringList();
    files.removeAll(path);
    files.prepend(path);
    settings.setValue(Key, files.mid(0, mostFiles));
}

void RecentFiles::Fill()
{
    clear();
    const QStringList files = WithoutThoseThatAreGone(QSettings().value(Key).toStringList().mid(0, mostFiles));
    for (const QString& path : files) {
        addAction(AsMenuText(QDir::toNativeSeparators(path)), this, [this, path] { Q_EMIT FileChosen(path); });
    }
    if (isEmpty()) {
        addAction(tr("No files"))->setEnabled(false);
        return;
    }
    addSeparator();
    addAction(tr("&Clear list"), this, [] { QSettings().remove(Key); });
}
