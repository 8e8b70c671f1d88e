#pragma once

#include <QtWidgets/QDockWidget>

class QAction;
class QListWidget;

/** The files that the user opened together, one of which is loaded. It is hidden while there are fewer than two.
 */
class FileList : public QDockWidget
{
    Q_OBJECT

public:
    explicit FileList(QWidget* parent = nullptr);

    /** These instead of the former ones, each once. The first one is where Next() and Previous() start from. */
    void SetFiles(const QStringList& paths);
    /** The absolute path of the file that is loaded now; it is marked if it is in the list. */
    void MarkLoaded(const QString& path);

    [[nodiscard]] QAction* Next() const { return m_next; }
    [[nodiscard]] QAction* Previous() const { return m_previous; }

Q_SIGNALS:
    void FileChosen(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildActions();
    void Choose(int row);
    void RemoveCurrent();
    void ShowWhatThereIs();
    [[nodiscard]] int NextRow() const { return m_row + (m_isInList ? 1 : 0); }

    QListWidget* m_list;
    QAction* m_next = nullptr;
    QAction* m_previous = nullptr;
    /** Where the file that was chosen last is, which may have been unreadable, or was before it was removed. */
    int m_row = 0;
    bool m_isInList = false;
};
