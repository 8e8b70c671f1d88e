#pragma once

#include <QtWidgets/QDialog>

class HostPlayer;
class QFormLayout;

/** What is in the loaded file. */
class FileInformation : public QDialog
{
    Q_OBJECT

public:
    explicit FileInformation(const HostPlayer& player, QWidget* parent = nullptr);

private:
    void Add(const QString& name, const QString& value);

    QFormLayout* m_table;
};
