#include "RecentFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QLatin1StringView Key("recentFiles");

/** What the menus' underlined letters are marked with is an ordinary letter of a name. */
QString AsMenuText(const QString& path)
{
    return QDir::toNativeSeparators(path).replace(u'&', u"&&"_s);
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
    settings.setValue(Key, QStringList(files.first(mostFiles < files.size() ? mostFiles : files.size())));
}

void RecentFiles::Fill()
{
    clear();
    const QStringList files = QSettings().value(Key).toStringList();
    for (const QString& path : files) {
        if (QFileInfo(path).isFile()) {
            addAction(AsMenuText(path), this, [this, path] { Q_EMIT FileChosen(path); });
        }
    }
    if (isEmpty()) {
        addAction(tr("No files"))->setEnabled(false);
        return;
    }
    addSeparator();
    addAction(tr("&Clear list"), this, [] { QSettings().remove(Key); });
}
