#pragma once

#include <QtWidgets/QMenu>

/** A menu of the files that were opened last, the latest one first, kept from one start to the next. Files that
 * are no longer there are left out. */
class RecentFiles : public QMenu
{
    Q_OBJECT

public:
    static constexpr qsizetype mostFiles = 10;

    explicit RecentFiles(QWidget* parent = nullptr);

    void Add(const QString& path);

Q_SIGNALS:
    void FileChosen(const QString& path);

private:
    void Fill();
};
