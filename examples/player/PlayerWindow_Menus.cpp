#include "DeviceMenu.h"
#include "HostPlayer.h"
#include "PlayerWindow.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Version.h>

#include <QtGui/QAction>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStyle>

using namespace Qt::Literals::StringLiterals;
using Actions = vantoraudio::vantorAudioEngine::UI::AudioPlayerActions;

void PlayerWindow::BuildMenus()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    fileMenu->addAction(style()->standardIcon(QStyle::SP_DialogOpenButton), tr("&Open…"), QKeySequence::Open, this,
                        &PlayerWindow::AskForFile);
    BuildExport(fileMenu);
    fileMenu->addAction(tr("S&ettings…"), this, &PlayerWindow::AskForSettings);
    fileMenu->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    BuildPlayerMenus();
    auto* devices = new DeviceMenu(this);
    connect(devices, &DeviceMenu::DeviceChosen, m_player, &HostPlayer::SetAudioOutputDevice);
    menuBar()->addMenu(devices);
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&Keys…"), QKeySequence::HelpContents, this, &PlayerWindow::ShowShortcuts);
    help->addAction(tr("&About…"), this, &PlayerWindow::ShowAbout);
}

void PlayerWindow::BuildPlayerMenus()
{
    m_actions = new Actions(m_player);
    menuBar()->addMenu(tr("&Playback"))->addActions(m_actions->All(Actions::Playback));
    menuBar()->addMenu(tr("&View"))->addActions(m_actions->All(Actions::View));
    menuBar()->addMenu(tr("&Selection"))->addActions(m_actions->All(Actions::Selection));
}

void PlayerWindow::ShowShortcuts()
{
    QDialog dialog(this);
    dialog.setObjectName("keys"_L1);
    dialog.setWindowTitle(tr("Keys"));
    auto* table = new QFormLayout(&dialog);
    for (const auto group : {Actions::Playback, Actions::View, Actions::Selection}) {
        for (const QAction* action : m_actions->All(group)) {
            table->addRow(action->shortcut().toString(QKeySequence::NativeText), new QLabel(action->text()));
        }
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    table->addRow(buttons);
    dialog.exec();
}

void PlayerWindow::ShowAbout()
{
    using namespace vantoraudio;
    using Waveform = vantorAudioEngine::UI::BGFXWaveformWidget;
    auto* box = new QMessageBox(QMessageBox::Information, tr("About"),
                                u"vantorAudioEngine "_s + AudioEngine::libVersionString(), QMessageBox::Ok, this);
    box->setInformativeText(tr("The waveform is drawn by %1.").arg(Waveform::GetDrawingDeviceName()));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void PlayerWindow::ShowContextMenu(const QPoint& globalPosition)
{
    QMenu menu;
    menu.addActions({m_actions->Get(Actions::PlayPause), m_actions->Get(Actions::ShowSelection),
                     m_actions->Get(Actions::ShowAll), m_actions->Get(Actions::ClearSelection)});
    menu.addSeparator();
    menu.addAction(m_selectionAction);
    menu.exec(globalPosition);
}
