#include "DeviceMenu.h"
#include "FileInformation.h"
#include "FileList.h"
#include "GoTo.h"
#include "HostPlayer.h"
#include "PlayerWindow.h"
#include "RecentFiles.h"
#include "SelectionHistory.h"
#include "ShortcutSheet.h"
#include "SpeedMenu.h"
#include "ThemeMenu.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Version.h>

#include <QtCore/QSettings>
#include <QtGui/QAction>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using Actions = vantoraudio::vantorAudioEngine::UI::AudioPlayerActions;

namespace {

/** On some platforms Qt has no standard key for it. */
constexpr QKeyCombination QuitKey(Qt::ControlModifier, Qt::Key_Q);

} // namespace

void PlayerWindow::BuildMenus()
{
    BuildFileMenu();
    BuildEditMenu();
    BuildPlayerMenus();
    auto* devices = new DeviceMenu(this);
    connect(devices, &DeviceMenu::DeviceChosen, m_player, &HostPlayer::SetAudioOutputDevice);
    devices->Restore();
    menuBar()->addMenu(devices);
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&Keys…"), QKeySequence::HelpContents, this, &PlayerWindow::ShowShortcuts);
    help->addAction(tr("&About…"), this, &PlayerWindow::ShowAbout);
    ShowWhatCanBeExported();
}

void PlayerWindow::BuildFileMenu()
{
    QMenu* fileMenu = menuBar()->addMenu(tr("&File"));
    fileMenu->addAction(tr("&Open…"), QKeySequence::Open, this, &PlayerWindow::AskForFiles);
    m_recentFiles = new RecentFiles(this);
    connect(m_recentFiles, &RecentFiles::FileChosen, this, &PlayerWindow::OpenFile);
    fileMenu->addMenu(m_recentFiles);
    connect(m_files, &FileList::FileChosen, this, &PlayerWindow::OpenFile);
    fileMenu->addActions({m_files->Next(), m_files->Previous()});
    BuildExport(fileMenu);
    m_informationAction =
        fileMenu->addAction(tr("&Information…"), Qt::CTRL | Qt::Key_I, this, &PlayerWindow::ShowInformation);
    fileMenu->addAction(tr("&Settings…"), this, &PlayerWindow::AskForSettings);
    fileMenu->addAction(tr("&Quit"), QuitKey, this, &QWidget::close);
}

void PlayerWindow::BuildEditMenu()
{
    m_history = std::make_unique<SelectionHistory>(*m_player);
    QAction* undo = m_history->Stack().createUndoAction(this, tr("&Undo"));
    QAction* redo = m_history->Stack().createRedoAction(this, tr("&Redo"));
    undo->setShortcut(QKeySequence::Undo);
    redo->setShortcut(QKeySequence::Redo);
    menuBar()->addMenu(tr("&Edit"))->addActions({undo, redo});
}

void PlayerWindow::BuildPlayerMenus()
{
    m_actions = new Actions(m_player);
    QMenu* playback = menuBar()->addMenu(tr("&Playback"));
    playback->addActions(m_actions->All(Actions::Playback));
    m_goToAction = playback->addAction(tr("&Go to…"), Qt::CTRL | Qt::Key_G, this, &PlayerWindow::AskForPosition);
    m_speeds = new SpeedMenu(*m_player, this);
    playback->addMenu(m_speeds);
    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addActions(m_actions->All(Actions::View));
    QAction* follow = view->addAction(tr("&Follow the position"), QKeySequence(Qt::Key_F));
    follow->setObjectName("follow"_L1);
    follow->setCheckable(true);
    follow->setChecked(QSettings().value(u"follow"_s, true).toBool());
    m_player->SetFollowsPosition(follow->isChecked());
    connect(follow, &QAction::toggled, this, [this](bool follows) {
        m_player->SetFollowsPosition(follows);
        QSettings().setValue(u"follow"_s, follows);
    });
    view->addAction(m_files->toggleViewAction());
    m_themes = new ThemeMenu(this);
    connect(m_themes, &ThemeMenu::Chosen, this, [this](Appearance::Theme theme) {
        Appearance appearance = m_appearance;
        appearance.theme = theme;
        appearance.Save();
        SetAppearance(appearance);
    });
    view->addMenu(m_themes);
    QMenu* selection = menuBar()->addMenu(tr("&Selection"));
    m_selectAllAction = selection->addAction(tr("Select &all"), QKeySequence::SelectAll, this,
                                             [this] { SelectRange(0.0, Duration()); });
    selection->addActions(m_actions->All(Actions::Selection));
}

void PlayerWindow::AskForPosition()
{
    GoTo dialog(m_player->GetAudioPosition(), this);
    connect(&dialog, &GoTo::Chosen, this, &PlayerWindow::GoToPosition);
    dialog.exec();
}

/** Times behind the end lead to the end. */
void PlayerWindow::GoToPosition(double seconds)
{
    const double position = std::min(seconds, m_player->GetAudioDuration());
    m_player->UpdateAudioPosition(position);
    const auto [left, right] = m_player->GetVisibleRange();
    if (position < left || position > right) {
        const double half = (right - left) / 2.0;
        const double start =
            std::clamp(position - half, 0.0, std::max(0.0, m_player->GetAudioDuration() - 2.0 * half));
        m_player->ShowRange(start, start + 2.0 * half);
    }
}

void PlayerWindow::ShowInformation()
{
    FileInformation(*m_player, this).exec();
}

void PlayerWindow::ShowShortcuts()
{
    ShortcutSheet(*this).exec();
}

void PlayerWindow::ShowAbout()
{
    using namespace vantoraudio;
    using Waveform = vantorAudioEngine::UI::BGFXWaveformWidget;
    auto* box = new QMessageBox(QMessageBox::Information, tr("About"),
                                u"vantorAudioEngine "_s + AudioEngine::libVersionString(), QMessageBox::Ok, this);
    box->setIconPixmap(windowIcon().pixmap(64));
    box->setInformativeText(tr("The waveform is drawn by %1.").arg(Waveform::GetDrawingDeviceName()) + u'\n' +
                            tr("This program runs with Qt %1.").arg(QString::fromLatin1(qVersion())));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void PlayerWindow::ShowContextMenu(const QPoint& globalPosition)
{
    QMenu menu;
    menu.addActions({m_actions->Get(Actions::PlayPause), m_actions->Get(Actions::ShowSelection),
                     m_actions->Get(Actions::ShowAll), m_actions->Get(Actions::ClearSelection)});
    menu.addSeparator();
    menu.addMenu(m_exportMenu);
    menu.exec(globalPosition);
}
