#include "ui/player/LibraryIcon.h"

#include <vantorAudioEngine/AudioPlayerActions.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaEnum>
#include <QtCore/QPointer>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractSlider>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using Actions = AudioPlayerActions;

constexpr double ShortSeek = 1.0;
constexpr double LongSeek = 5.0;
constexpr double EdgeStep = 0.01;
/** Views are not zoomed in farther than the wheel zooms. */
constexpr double FinestScale = 0.01;

struct Entry
{
    Actions::Command command{};
    Actions::Group group{};
    const char* text = nullptr;
    QKeyCombination key;
    const char* icon = nullptr;
    bool isSwitch = false;
};

constexpr std::array Entries{
    Entry{Actions::PlayPause, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Play or pause"),
          Qt::Key_Space, "PlayerPlay"},
    Entry{Actions::Stop, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Stop"),
          QKeyCombination(Qt::ControlModifier, Qt::Key_Period), "PlayerStop"},
    Entry{Actions::SeekBack, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "One second back"),
          Qt::Key_Left},
    Entry{Actions::SeekForward, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "One second forward"),
          Qt::Key_Right},
    Entry{Actions::SeekFarBack, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Five seconds back"),
          QKeyCombination(Qt::ShiftModifier, Qt::Key_Left)},
    Entry{Actions::SeekFarForward, Actions::Playback,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Five seconds forward"),
          QKeyCombination(Qt::ShiftModifier, Qt::Key_Right)},
    Entry{Actions::GoToStart, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Go to the start"),
          Qt::Key_Home},
    Entry{Actions::GoToEnd, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Go to the end"),
          Qt::Key_End},
    Entry{Actions::Loop, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Loop"), Qt::Key_L,
          "PlayerLoop", true},
    Entry{Actions::Mute, Actions::Playback, QT_TRANSLATE_NOOP("AudioPlayerActions", "Mute"), Qt::Key_M, "Mute",
          true},
    Entry{Actions::ZoomIn, Actions::View, QT_TRANSLATE_NOOP("AudioPlayerActions", "Zoom in"), Qt::Key_Plus},
    Entry{Actions::ZoomOut, Actions::View, QT_TRANSLATE_NOOP("AudioPlayerActions", "Zoom out"), Qt::Key_Minus},
    Entry{Actions::ShowAll, Actions::View, QT_TRANSLATE_NOOP("AudioPlayerActions", "Show all"), Qt::Key_0},
    Entry{Actions::ShowSelection, Actions::View, QT_TRANSLATE_NOOP("AudioPlayerActions", "Zoom to the selection"),
          Qt::Key_Z},
    Entry{Actions::StartHere, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Start the selection at the position"), Qt::Key_BracketLeft},
    Entry{Actions::EndHere, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "End the selection at the position"), Qt::Key_BracketRight},
    Entry{Actions::MoveStartBack, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Move the start back"),
          QKeyCombination(Qt::ControlModifier, Qt::Key_Left)},
    Entry{Actions::MoveStartForward, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Move the start forward"),
          QKeyCombination(Qt::ControlModifier, Qt::Key_Right)},
    Entry{Actions::MoveEndBack, Actions::Selection, QT_TRANSLATE_NOOP("AudioPlayerActions", "Move the end back"),
          QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Left)},
    Entry{Actions::MoveEndForward, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Move the end forward"),
          QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Right)},
    Entry{Actions::ClearSelection, Actions::Selection,
          QT_TRANSLATE_NOOP("AudioPlayerActions", "Clear the selection"), Qt::Key_Escape},
};

QString ToolTipOf(const QAction& action)
{
    const QString key = action.shortcut().toString(QKeySequence::NativeText);
    return key.isEmpty() ? action.toolTip() : action.toolTip() + u" (" + key + u')';
}

/** Not a field that a program has put into the player. */
bool IsTimeField(const QWidget& control)
{
    constexpr std::array names{"edCurrentPosition"_L1, "edSelectionStart"_L1, "edSelectionEnd"_L1};
    return std::find(names.begin(), names.end(), control.objectName()) != names.end();
}

/** A time is typed with digits and what stands between them; every other key that would type something is free for
 *  shortcuts. */
bool IsOfNoUseIn(const QLineEdit& field, QKeyEvent& event)
{
    const QString text = event.text();
    const bool types =
        !text.isEmpty() && text.front().isPrint() && !event.modifiers().testFlag(Qt::ControlModifier);
    const bool isOfTimes = types && (text.front().isDigit() || text.front() == u':' || text.front() == u'.');
    return (types && !isOfTimes) || (event.matches(QKeySequence::Undo) && !field.isUndoAvailable()) ||
           (event.matches(QKeySequence::Redo) && !field.isRedoAvailable());
}

void TakeBackWhatWasTyped(QLineEdit& field)
{
    // A receiver of the field's signals may destroy it, or type again.
    constexpr int mostSteps = 1000;
    const QPointer<QLineEdit> self(&field);
    for (int i = 0; self && field.isUndoAvailable() && i < mostSteps; ++i) {
        field.undo();
    }
    if (self) {
        field.setModified(false);
    }
}

bool MovesWithinAControl(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Home || key == Qt::Key_End;
}

} // namespace

struct AudioPlayerActions::Internals
{
    AudioPlayerWidget& player;
    /** By the number of their commands. */
    std::array<QAction*, Entries.size()> actions{};
};

AudioPlayerActions::AudioPlayerActions(AudioPlayerWidget* player)
    : QObject(player), m_internals(new Internals{*player})
{
    for (const Entry& entry : Entries) {
        auto* action = new QAction(QCoreApplication::translate("AudioPlayerActions", entry.text), this);
        action->setObjectName(QString::fromLatin1(QMetaEnum::fromType<Command>().valueToKey(entry.command)));
        action->setShortcut(entry.key);
        action->setCheckable(entry.isSwitch);
        connect(action, &QAction::triggered, this, [this, command = entry.command] { Do(command); });
        player->addAction(action);
        m_internals->actions[entry.command] = action;
    }
    SetNightIcons(false);
    Get(Loop)->setChecked(player->GetLoop());
    Get(Mute)->setChecked(player->GetAudioPlayBackMute());
    connect(player, &AudioPlayerWidget::LoopChanged, Get(Loop), &QAction::setChecked);
    connect(player, &AudioPlayerWidget::AudioPlayBackMuteChanged, Get(Mute), &QAction::setChecked);
    SetToolTips();
    for (QWidget* control : player->findChildren<QWidget*>()) {
        if (qobject_cast<QAbstractSlider*>(control) || qobject_cast<QComboBox*>(control) ||
            IsTimeField(*control)) {
            control->installEventFilter(this);
        }
        // Otherwise Qt gives a box the focus for the very turn of the wheel that passes over it.
        if (qobject_cast<QComboBox*>(control) && control->focusPolicy() == Qt::WheelFocus) {
            control->setFocusPolicy(Qt::StrongFocus);
        }
    }
}

AudioPlayerActions::~AudioPlayerActions() = default;

QAction* AudioPlayerActions::Get(Command command) const
{
    return m_internals->actions[command];
}

QList<QAction*> AudioPlayerActions::All(Group group) const
{
    QList<QAction*> actions;
    for (const Entry& entry : Entries) {
        if (entry.group == group) {
            actions.append(Get(entry.command));
        }
    }
    return actions;
}

void AudioPlayerActions::SetNightIcons(bool night)
{
    for (const Entry& entry : Entries) {
        if (entry.icon) {
            Get(entry.command)->setIcon(LibraryIcon(QLatin1StringView(entry.icon), night));
        }
    }
}

/** Tool tips that the controls have already stay. */
void AudioPlayerActions::SetToolTips()
{
    const AudioPlayerWidget& player = m_internals->player;
    const auto keepTelling = [&player](const char* name, const QAction* action) {
        auto* control = player.findChild<QWidget*>(QLatin1StringView(name));
        auto tell = [control, action, own = QString()]() mutable {
            if (control->toolTip() == own) {
                own = ToolTipOf(*action);
                control->setToolTip(own);
            }
        };
        tell();
        connect(action, &QAction::changed, control, tell);
    };
    keepTelling("btnPlayPause", Get(PlayPause));
    keepTelling("btnStop", Get(Stop));
    keepTelling("btnLoop", Get(Loop));
    keepTelling("btnMute", Get(Mute));
    for (QWidget* control : player.findChildren<QWidget*>()) {
        const bool isControl = !qobject_cast<QFrame*>(control) && !control->accessibleName().isEmpty();
        if (isControl && control->toolTip().isEmpty()) {
            control->setToolTip(control->accessibleName());
        }
    }
}

bool AudioPlayerActions::eventFilter(QObject* watched, QEvent* event)
{
    const auto* box = qobject_cast<QComboBox*>(watched);
    if (box && event->type() == QEvent::Wheel && !box->hasFocus()) {
        event->ignore();
        return true;
    }
    const bool isOverride = event->type() == QEvent::ShortcutOverride;
    if (!isOverride && event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    auto& keyEvent = *static_cast<QKeyEvent*>(event);
    if (auto* field = qobject_cast<QLineEdit*>(watched)) {
        return FilterKeyOf(*field, keyEvent, isOverride);
    }
    if (isOverride && keyEvent.modifiers() == Qt::NoModifier && MovesWithinAControl(keyEvent.key())) {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

bool AudioPlayerActions::FilterKeyOf(QLineEdit& field, QKeyEvent& event, bool isOverride)
{
    const bool takesBack = event.key() == Qt::Key_Escape && field.isModified();
    if (takesBack && isOverride) {
        event.accept();
        return true;
    }
    if (takesBack) {
        TakeBackWhatWasTyped(field);
        return true;
    }
    if (isOverride && IsOfNoUseIn(field, event)) {
        event.ignore();
        return true;
    }
    return false;
}

void AudioPlayerActions::Do(Command command)
{
    AudioPlayerWidget& player = m_internals->player;
    const double position = player.GetAudioPosition();
    const double duration = player.GetAudioDuration();
    const auto [start, end] = player.GetSelectedSnippet();
    const bool hasSelection = start < end;
    switch (command) {
    case PlayPause:
        return player.IsPlaying() ? player.Pause() : player.Play();
    case Stop:
        return player.OnBtnStopClicked();
    case SeekBack:
        return SeekTo(position - ShortSeek);
    case SeekForward:
        return SeekTo(position + ShortSeek);
    case SeekFarBack:
        return SeekTo(position - LongSeek);
    case SeekFarForward:
        return SeekTo(position + LongSeek);
    case GoToStart:
        return SeekTo(0.0);
    case GoToEnd:
        return SeekTo(duration);
    case Loop:
        return player.SetLoop(!player.GetLoop());
    case Mute:
        return ToggleMute();
    case ZoomIn:
        return Zoom(0.5);
    case ZoomOut:
        return Zoom(2.0);
    case ShowAll:
        return player.ShowRange(0.0, duration + player.GetDelay());
    case ShowSelection:
        return player.ShowRange(start, end);
    case StartHere:
        return Select(position, hasSelection && position < end ? end : duration);
    case EndHere:
        return Select(hasSelection && start < position ? start : 0.0, position);
    case MoveStartBack:
        return MoveEdges(-EdgeStep, 0.0);
    case MoveStartForward:
        return MoveEdges(EdgeStep, 0.0);
    case MoveEndBack:
        return MoveEdges(0.0, -EdgeStep);
    case MoveEndForward:
        return MoveEdges(0.0, EdgeStep);
    case ClearSelection:
        return player.ClearSelection();
    }
}

/** No signal tells of the program's own muting, so what the action shows may be old. */
void AudioPlayerActions::ToggleMute()
{
    AudioPlayerWidget& player = m_internals->player;
    player.SetAudioPlayBackMute(!player.GetAudioPlayBackMute());
    Get(Mute)->setChecked(player.GetAudioPlayBackMute());
}

void AudioPlayerActions::SeekTo(double position)
{
    AudioPlayerWidget& player = m_internals->player;
    if (player.GetAudioDuration() > 0.0) {
        player.UpdateAudioPosition(std::clamp(position, 0.0, player.GetAudioDuration()));
    }
}

/** Around the position if it shows, otherwise around the middle of the view. */
void AudioPlayerActions::Zoom(double factor)
{
    AudioPlayerWidget& player = m_internals->player;
    const auto [left, right] = player.GetVisibleRange();
    const double position = player.GetAudioPosition();
    const double anchor = left <= position && position <= right ? position : left + (right - left) / 2.0;
    const double newLeft = std::max(0.0, anchor - (anchor - left) * factor);
    const double newRight =
        std::min(player.GetAudioDuration() + player.GetDelay(), anchor + (right - anchor) * factor);
    if (factor > 1.0 || BGFXWaveformWidget::CalculateScale(newRight - newLeft) > FinestScale) {
        player.ShowRange(newLeft, newRight);
    }
}

void AudioPlayerActions::Select(double start, double end)
{
    if (start < end) {
        m_internals->player.SetSelectedSnippet({start, end});
    }
}

void AudioPlayerActions::MoveEdges(double startStep, double endStep)
{
    const AudioPlayerWidget& player = m_internals->player;
    const auto [start, end] = player.GetSelectedSnippet();
    if (start < end) {
        Select(std::max(0.0, start + startStep), std::min(player.GetAudioDuration(), end + endStep));
    }
}

} // namespace vantoraudio::vantorAudioEngine::UI
