#pragma once

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <utility>

class HostPlayer;

/** Which stretch of each file showed when it was left: in this session, and the last file's in the last one. */
class ViewMemory : public QObject
{
    Q_OBJECT

public:
    /** The player must live longer. */
    explicit ViewMemory(HostPlayer& player);

    /** Shows the stretch of the file that has just been loaded; all of one that is new here. */
    void Restore();

private:
    void Note();

    HostPlayer& m_player;
    QHash<QString, std::pair<double, double>> m_views;
};
