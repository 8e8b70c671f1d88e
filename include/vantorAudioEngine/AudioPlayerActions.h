#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QList>
#include <QtCore/QObject>

#include <memory>

class QAction;
class QKeyEvent;
class QLineEdit;

namespace vantoraudio::vantorAudioEngine::UI {

class AudioPlayerWidget;

/**
 * Ready-made actions for a player, with texts, icons and shortcuts, for the menus and tool bars of a program:
 *
 *     auto* actions = new AudioPlayerActions(player);
 *     menuBar()->addMenu(tr("&Playback"))->addActions(actions->All(AudioPlayerActions::Playback));
 *
 * | Keys                    | Actions                                                          |
 * |-------------------------|------------------------------------------------------------------|
 * | Space, Ctrl+.           | play or pause, stop                                              |
 * | Left, Right             | 1 s back or forward, with Shift 5 s                              |
 * | Home, End               | go to the start or the end                                       |
 * | L, M                    | loop, mute                                                       |
 * | +, -, 0, Z              | zoom in, zoom out, show all, zoom to the selection               |
 * | [, ]                    | start or end the selection at the position                       |
 * | Ctrl+Left, Ctrl+Right   | move the selection's start by 10 ms, with Shift its end          |
 * | Escape                  | clear the selection                                              |
 *
 * The shortcuts work in the player's whole window, from here on and without any menu; a program that wants other
 * keys changes the actions. Sliders and boxes of the player keep the keys that they need while they have the
 * focus, and so do its time fields: digits, colon, point, and Escape, which takes back what was typed. The
 * wheel changes a box only where it has the focus, which it does not get from the wheel. Without a file only Loop
 * and Mute do something.
 *
 * Controls of the player that have no tool tip get one, which outlives this object. Where an action does the same,
 * it names the action's key and follows the action's text and key, until the program sets another tool tip. Loop
 * and Mute are checked while they are on. No signal tells of a SetAudioPlayBackMute() of the program, so Mute
 * shows it only after it was used itself.
 *
 * GUI thread only. The actions belong to this object, and it belongs to the player, which must not be null.
 */
class VANTORAUDIOENGINE_EXPORT AudioPlayerActions : public QObject
{
    Q_OBJECT

public:
    enum Command
    {
        // Playback
        PlayPause,
        Stop,
        SeekBack,
        SeekForward,
        SeekFarBack,
        SeekFarForward,
        GoToStart,
        GoToEnd,
        Loop,
        Mute,
        // View
        ZoomIn,
        ZoomOut,
        ShowAll,
        ShowSelection,
        // Selection
        StartHere,
        EndHere,
        MoveStartBack,
        MoveStartForward,
        MoveEndBack,
        MoveEndForward,
        ClearSelection
    };
    Q_ENUM(Command)

    enum Group
    {
        Playback,
        View,
        Selection
    };
    Q_ENUM(Group)

    explicit AudioPlayerActions(AudioPlayerWidget* player);
    ~AudioPlayerActions() override;

    [[nodiscard]] QAction* Get(Command command) const;
    /** In the order of the commands. */
    [[nodiscard]] QList<QAction*> All(Group group) const;

    /** Icons for dark windows, or (as at first) for light ones. */
    void SetNightIcons(bool night);

protected:
    /** Leaves arrows, Home and End to the player's own sliders and boxes, and keys to its fields. Keeps the wheel
     * from boxes without the focus. */
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Internals;

    static bool FilterKeyOf(QLineEdit& field, QKeyEvent& event, bool isOverride);
    void Do(Command command);
    void SetToolTips();
    void ToggleMute();
    void SeekTo(double position);
    void Zoom(double factor);
    void Select(double start, double end);
    void MoveEdges(double startStep, double endStep);

    std::unique_ptr<Internals> m_internals;
};

} // namespace vantoraudio::vantorAudioEngine::UI
