#include "FileList.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QListWidget>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int PathRole = Qt::UserRole;

/** The first letters of a name, too, lead to it. */
bool MovesInAList(const QKeyEvent& event)
{
    const QString text = event.text();
    const bool isOfName = !text.isEmpty() && text[0].isLetterOrNumber();
    const bool isPlain = (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == Qt::NoModifier;
    return isPlain && (event.key() == Qt::Key_Home || event.key() == Qt::Key_End || isOfName);
}

QString PathOf(const QListWidgetItem& item)
{
    return item.data(PathRole).toString();
}

} // namespace

FileList::FileList(QWidget* parent) : QDockWidget(tr("Files"), parent), m_list(new QListWidget(this))
{
    setObjectName("files"_L1);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMinimumWidth(120);
    m_list->setAccessibleName(windowTitle());
    m_list->installEventFilter(this);
    setWidget(m_list);
    BuildActions();
    connect(m_list, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { Choose(m_list->row(item)); });
    ShowWhatThereIs();
}

void FileList::BuildActions()
{
    m_next = new QAction(tr("&Next file"), this);
    m_next->setShortcut(Qt::CTRL | Qt::Key_PageDown);
    connect(m_next, &QAction::triggered, this, [this] { Choose(NextRow()); });
    m_previous = new QAction(tr("&Previous file"), this);
    m_previous->setShortcut(Qt::CTRL | Qt::Key_PageUp);
    connect(m_previous, &QAction::triggered, this, [this] { Choose(m_row - 1); });

    auto* remove = new QAction(tr("&Remove from the list"), this);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetShortcut);
    connect(remove, &QAction::triggered, this, &FileList::RemoveCurrent);
    m_list->addAction(remove);
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
}

bool FileList::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && MovesInAList(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QDockWidget::eventFilter(watched, event);
}

void FileList::SetFiles(const QStringList& paths)
{
    QStringList files;
    for (const QString& path : paths) {
        // A folder's name may end in a slash, and would then be empty.
        files.append(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    }
    files.removeDuplicates();
    m_list->clear();
    for (const QString& path : files) {
        auto* item = new QListWidgetItem(QFileInfo(path).fileName(), m_list);
        item->setData(PathRole, path);
        item->setToolTip(QDir::toNativeSeparators(path));
    }
    m_row = 0;
    m_isInList = true;
    m_list->setCurrentRow(0);
    ShowWhatThereIs();
    setVisible(m_list->count() > 1);
}

void FileList::MarkLoaded(const QString& path)
{
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        const bool isLoaded = PathOf(*item) == path;
        QFont font = m_list->font();
        font.setBold(isLoaded);
        item->setFont(font);
        item->setData(Qt::AccessibleDescriptionRole, isLoaded ? tr("Loaded") : QString());
        if (isLoaded) {
            m_row = row;
            m_isInList = true;
            m_list->setCurrentRow(row);
        }
    }
    ShowWhatThereIs();
}

void FileList::Choose(int row)
{
    const QListWidgetItem* item = m_list->item(row);
    if (!item) {
        return;
    }
    m_row = row;
    m_isInList = true;
    m_list->setCurrentRow(row);
    ShowWhatThereIs();
    Q_EMIT FileChosen(PathOf(*item));
}

void FileList::RemoveCurrent()
{
    const int row = m_list->currentRow();
    if (row < 0) {
        return;
    }
    delete m_list->takeItem(row);
    if (row < m_row) {
        --m_row;
    } else if (row == m_row) {
        m_isInList = false;
    }
    ShowWhatThereIs();
    if (m_list->count() < 2) {
        hide();
    }
}

void FileList::ShowWhatThereIs()
{
    const bool isList = m_list->count() > 1;
    toggleViewAction()->setEnabled(isList);
    m_next->setEnabled(isList && NextRow() < m_list->count());
    m_previous->setEnabled(isList && m_row > 0);
}
