#include "SelectionHistory.h"

#include "HostPlayer.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>

class SelectionHistory::Change : public QUndoCommand
{
public:
    Change(SelectionHistory& history, const Selection& from, const Selection& to)
        : QUndoCommand(SelectionHistory::tr("selection")), m_history(history), m_from(from), m_to(to)
    {
    }

    void undo() override { m_history.Select(m_from); }
    void redo() override { m_history.Select(m_to); }

private:
    SelectionHistory& m_history;
    const Selection m_from;
    const Selection m_to;
};

SelectionHistory::SelectionHistory(HostPlayer& player) : m_player(player)
{
    m_stack.setUndoLimit(1000);
    connect(&player, &HostPlayer::WaveFormSelectionChanged, this, &SelectionHistory::SettleSoon);
    connect(&player, &HostPlayer::AudioFileChanged, this, [this] {
        m_stack.clear();
        m_settled = m_player.GetSelectedSnippet();
    });
    QCoreApplication::instance()->installEventFilter(this);
}

bool SelectionHistory::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        SettleSoon();
    }
    return QObject::eventFilter(watched, event);
}

/** When the event at hand is done: a release may change the selection, and some changes come in two steps. */
void SelectionHistory::SettleSoon()
{
    QTimer::singleShot(0, this, &SelectionHistory::Settle);
}

void SelectionHistory::Settle()
{
    const Selection selection = m_player.GetSelectedSnippet();
    if (QGuiApplication::mouseButtons() == Qt::NoButton && selection != m_settled) {
        m_stack.push(new Change(*this, std::exchange(m_settled, selection), selection));
    }
}

void SelectionHistory::Select(const Selection& selection)
{
    if (selection == m_player.GetSelectedSnippet()) {
        return;
    }
    if (selection.first < selection.second) {
        m_player.SetSelectedSnippet(selection);
    } else {
        m_player.ClearSelection();
    }
    m_settled = m_player.GetSelectedSnippet();
}
