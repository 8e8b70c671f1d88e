#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/** A folder for a test's files, removed with this object. */
class TemporaryFiles
{
public:
    QString Path(const QString& name) const { return m_folder.filePath(name); }

    /** Writes a file and returns its path; empty when that failed. */
    QString Write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(Path(name));
        const bool isWritten =
            file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
        return isWritten ? file.fileName() : QString();
    }

    /** Of everything in the folder, hidden ones too. */
    QStringList Names() const
    {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }

    static QByteArray Read(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_folder;
};
