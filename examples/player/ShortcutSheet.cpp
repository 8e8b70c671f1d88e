#include "ShortcutSheet.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QAction>
#include <QtGui/QScreen>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

void AddActionsOf(const QWidget& menu, QList<const QAction*>& actions)
{
    for (const QAction* action : menu.actions()) {
        if (const QMenu* submenu = action->menu()) {
            AddActionsOf(*submenu, actions);
        } else {
            actions.append(action);
        }
    }
}

QList<const QAction*> ActionsWithKeys(const QMainWindow& window)
{
    QList<const QAction*> actions;
    AddActionsOf(*window.menuBar(), actions);
    for (const QAction* action : window.findChildren<QAction*>()) {
        if (!actions.contains(action)) {
            actions.append(action);
        }
    }
    actions.removeIf([](const QAction* action) { return action->shortcut().isEmpty(); });
    return actions;
}

/** Without what only a menu needs: the underlined letter, and the dots of what opens a dialog. */
QString TextOf(const QAction& action)
{
    // Some languages put the letter behind the text.
    static const QRegularExpression ofMenus(uR"(\(&\w\)|&(?!&)|…)"_s);
    return action.text().remove(ofMenus).trimmed();
}

/** The action of the menu that another menu opens and that has this one; null in the menus of the menu bar. */
const QAction* SubmenuOf(const QAction& action)
{
    for (const QObject* object : action.associatedObjects()) {
        const auto* menu = qobject_cast<const QMenu*>(object);
        if (menu && qobject_cast<const QMenu*>(menu->parentWidget())) {
            return menu->menuAction();
        }
    }
    return nullptr;
}

QLabel* PlainLabel(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

ShortcutSheet::ShortcutSheet(QMainWindow& window) : QDialog(&window)
{
    setObjectName("keys"_L1);
    setWindowTitle(tr("Keys"));
    auto* sheet = new QWidget;
    auto* table = new QFormLayout(sheet);
    for (const QAction* action : ActionsWithKeys(window)) {
        const QAction* submenu = SubmenuOf(*action);
        const QString text = TextOf(*action);
        table->addRow(PlainLabel(QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText)),
                      PlainLabel(submenu ? tr("%1: %2").arg(TextOf(*submenu), text) : text));
    }
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(sheet);
    scroll->setWidgetResizable(true);
    auto* mouse = PlainLabel(tr("Mouse in the waveform: drag to select, Shift and click to extend the selection, "
                                "wheel to scroll, Ctrl and wheel to zoom, double click for the whole file."));
    mouse->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scroll);
    layout->addWidget(mouse);
    layout->addWidget(buttons);

    scroll->setMinimumWidth(sheet->sizeHint().width() + scroll->verticalScrollBar()->sizeHint().width());
    const int whole = sizeHint().height() - scroll->sizeHint().height() + sheet->sizeHint().height();
    resize(sizeHint().width(), std::min(whole, screen()->availableGeometry().height() * 4 / 5));
}
