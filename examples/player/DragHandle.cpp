#include "DragHandle.h"

#include "HostPlayer.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtGui/QDrag>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/** File systems take names of 255 bytes, and something is added to this one. */
QString Shortened(QString name)
{
    while (QFile::encodeName(name).size() > 200) {
        name.chop(1);
    }
    // Not half of a letter.
    if (!name.isEmpty() && name.back().isHighSurrogate()) {
        name.chop(1);
    }
    return name;
}

} // namespace

DragHandle::DragHandle(const HostPlayer& player, QString folder, QWidget* parent)
    : QToolButton(parent), m_player(player), m_folder(std::move(folder))
{
    setObjectName("dragSelection"_L1);
    setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    setToolTip(tr("Drag the selection from here into another program"));
    setText(tr("Drag selection"));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setCursor(Qt::OpenHandCursor);
    setAutoRaise(true);
    // There is nothing that a key could do here.
    setFocusPolicy(Qt::NoFocus);
    connect(&m_export, &FileExport::Progressed, this, &DragHandle::Progressed);
    connect(&m_export, &FileExport::Saved, this, &DragHandle::OnSaved);
    connect(&m_export, &FileExport::Cancelled, this, &DragHandle::OnCancelled);
    connect(&m_export, &FileExport::Failed, this, &DragHandle::OnFailed);
}

void DragHandle::Cancel()
{
    LetGo();
    m_export.Cancel();
}

void DragHandle::mousePressEvent(QMouseEvent* event)
{
    QToolButton::mousePressEvent(event);
    if (event->button() == Qt::LeftButton) {
        m_pressedAt = event->position().toPoint();
        m_isPressed = true;
        m_isMoved = false;
        Prepare();
    }
}

void DragHandle::mouseMoveEvent(QMouseEvent* event)
{
    QToolButton::mouseMoveEvent(event);
    const QPoint way = event->position().toPoint() - m_pressedAt;
    m_isMoved = m_isMoved || way.manhattanLength() >= QApplication::startDragDistance();
    DragWhenReady();
}

void DragHandle::mouseReleaseEvent(QMouseEvent* event)
{
    QToolButton::mouseReleaseEvent(event);
    LetGo();
}

/** A disabled button is not told when the mouse lets go of it. */
void DragHandle::changeEvent(QEvent* event)
{
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        LetGo();
    }
}

DragHandle::Piece DragHandle::SelectedPiece() const
{
    return {m_player.GetAudioFileName(), m_player.GetSelectedChannel(), m_player.GetSelectedSnippet()};
}

void DragHandle::Prepare()
{
    const Piece piece = SelectedPiece();
    if (IsWriting()) {
        if (piece != m_piece) {
            m_export.Cancel();
        }
    } else if (piece != m_piece || !QFileInfo::exists(m_path)) {
        Write(piece);
    }
}

void DragHandle::Write(const Piece& piece)
{
    QTemporaryDir folder(m_folder + u"/dragged-XXXXXX"_s);
    folder.setAutoRemove(false);
    const QString name = Shortened(QFileInfo(m_player.GetOriginalAudioFilePath()).completeBaseName());
    const QString path = folder.filePath(tr("%1 selection").arg(name) + u".wav"_s);
    if (!folder.isValid()) {
        OnFailed(path);
        return;
    }
    m_piece = piece;
    m_path.clear();
    m_export.Start(piece.source, piece.channel, path, WavFile::ExistingFile::Refuse,
                   FileExport::WriteRange(path, piece.range));
    Q_EMIT Started();
}

void DragHandle::OnSaved(const QString& path)
{
    m_path = path;
    Q_EMIT Ended();
    DragWhenReady();
}

/** By Cancel(), or because another selection is wanted now. */
void DragHandle::OnCancelled()
{
    m_piece = {};
    Q_EMIT Ended();
    if (m_isPressed) {
        Prepare();
    }
}

void DragHandle::OnFailed(const QString& path)
{
    m_piece = {};
    LetGo();
    Q_EMIT Ended();
    Q_EMIT Failed(path);
}

void DragHandle::LetGo()
{
    m_isPressed = false;
    setDown(false);
}

void DragHandle::DragWhenReady()
{
    if (!m_isPressed || !m_isMoved || m_path.isEmpty() || IsWriting()) {
        return;
    }
    // The drag takes the release of the button for itself.
    LetGo();
    auto* dragged = new QMimeData;
    dragged->setUrls({QUrl::fromLocalFile(m_path)});
    auto* drag = new QDrag(this);
    drag->setMimeData(dragged);
    drag->setPixmap(icon().pixmap(32));
    drag->exec(Qt::CopyAction);
}
