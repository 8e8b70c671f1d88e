#pragma once

#include "FileExport.h"

#include <QtCore/QPoint>
#include <QtWidgets/QToolButton>

#include <utility>

class HostPlayer;

/** A button by which the selection is dragged out of the window as a file. A press writes the file in the
 *  background; a drag starts once it is whole. */
class DragHandle : public QToolButton
{
    Q_OBJECT

public:
    /** The files go to new folders in `folder`, and its owner removes them: a program may read what was dropped on
     *  it long after. The player must live longer. */
    DragHandle(const HostPlayer& player, QString folder, QWidget* parent = nullptr);

    [[nodiscard]] bool IsWriting() const { return m_export.IsRunning(); }
    /** Gives up the file that is being written. */
    void Cancel();

Q_SIGNALS:
    void Progressed(int progress, int min, int max, const QString& text);
    /** A file is being written. */
    void Started();
    /** The file is written, or was given up. */
    void Ended();
    void Failed(const QString& path);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /** What is in a file. */
    struct Piece
    {
        QString source;
        WavFile::ChannelFormat channel = WavFile::ChannelNone;
        std::pair<double, double> range;

        bool operator==(const Piece&) const = default;
    };

    [[nodiscard]] Piece SelectedPiece() const;
    void Prepare();
    void Write(const Piece& piece);
    void OnSaved(const QString& path);
    void OnCancelled();
    void OnFailed(const QString& path);
    void LetGo();
    void DragWhenReady();

    const HostPlayer& m_player;
    const QString m_folder;
    FileExport m_export;
    /** What is or was written last. */
    Piece m_piece;
    /** Empty until it is written. */
    QString m_path;
    QPoint m_pressedAt;
    bool m_isPressed = false;
    bool m_isMoved = false;
};
