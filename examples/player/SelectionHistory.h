#pragma once

#include <QtCore/QObject>
#include <QtGui/QUndoStack>

#include <utility>

class HostPlayer;

/** Lets the user take back changes of the selection, and make them once more. What happens between the press and
 * the release of a mouse button is one change. Another file starts again. */
class SelectionHistory : public QObject
{
    Q_OBJECT

public:
    /** The player must live longer. */
    explicit SelectionHistory(HostPlayer& player);

    QUndoStack& Stack() { return m_stack; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Change;
    using Selection = std::pair<double, double>;

    void SettleSoon();
    void Settle();
    void Select(const Selection& selection);

    HostPlayer& m_player;
    QUndoStack m_stack;
    /** What the latest change led to. */
    Selection m_settled;
};
