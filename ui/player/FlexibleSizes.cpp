#include "ui/player/FlexibleSizes.h"

#include <QtCore/QEvent>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr int narrowMargin = 6;

void Release(QWidget& widget)
{
    widget.setMinimumSize(0, 0);
    widget.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

/** Room for a time, whatever digits it has. */
void FitTime(QLineEdit& field)
{
    // The hint has room for as many letters.
    constexpr int lettersOfHint = 17;
    const QFontMetrics metrics = field.fontMetrics();
    const int around = field.sizeHint().width() - lettersOfHint * metrics.horizontalAdvance(u'x');
    field.setFixedWidth(std::max(80, around + metrics.horizontalAdvance(u"00:00:00.000 "_s)));
}

/** In steps: pictures of odd sizes get blurred. */
void FitIcon(QPushButton& button)
{
    const int height = std::max(16, button.fontMetrics().height() / 4 * 4);
    button.setIconSize(QSize(height, height));
}

void FitButton(QPushButton& button, const QSize& smallest)
{
    FitIcon(button);
    button.setFixedSize(smallest.expandedTo(button.iconSize() + QSize(12, 8)));
}

/** Layouts within layouts notice changes only when they are used again, which is too late for measuring. */
void Refresh(QLayout& layout)
{
    for (int i = 0; i < layout.count(); ++i) {
        if (QLayout* const inner = layout.itemAt(i)->layout()) {
            Refresh(*inner);
        }
    }
    layout.invalidate();
}

} // namespace

FlexibleSizes::FlexibleSizes(QWidget& player, const Controls& controls)
    : QObject(&player), m_player(player), m_controls(controls)
{
    ReleaseSizes();
    GatherPosition();
    for (const auto& name : {"editingControlshLayout"_L1, "audioControlsHLayout"_L1, "controlsRightHLayout"_L1,
                             "controlsLeftHLayout"_L1}) {
        auto* const row = player.findChild<QBoxLayout*>(name);
        row->setContentsMargins(narrowMargin, row->contentsMargins().top(), narrowMargin,
                                row->contentsMargins().bottom());
        m_rows.append(row);
    }
    FitToFont();
    player.installEventFilter(this);
}

bool FlexibleSizes::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        FitToFont();
    } else if (event->type() == QEvent::Resize) {
        BreakRows();
    }
    return QObject::eventFilter(watched, event);
}

void FlexibleSizes::ReleaseSizes()
{
    for (QLabel* label : m_player.findChildren<QLabel*>()) {
        Release(*label);
    }
    for (QFrame* frame : {m_controls.frmAudioPlayerHint, m_player.findChild<QFrame*>(u"frmAudioControls"_s)}) {
        Release(*frame);
        frame->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }
    for (QWidget* control : std::initializer_list<QWidget*>{
             m_controls.cmbboxChannelSelector, m_controls.edCurrentPosition, m_controls.edTotalDuration,
             m_controls.edSelectionStart, m_controls.edSelectionEnd, m_controls.hSliderVolume}) {
        Release(*control);
    }
    m_controls.cmbboxChannelSelector->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_controls.cmbboxChannelSelector->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    m_controls.hSliderVolume->setFixedWidth(80);
    m_controls.lblAudioPlayerHint->setWordWrap(true);
}

/** Fields and labels of the position go to a row of their own, the rest to another, so that what belongs together
 *  stays together where the row breaks. */
void FlexibleSizes::GatherPosition()
{
    auto* const row = m_player.findChild<QBoxLayout*>(u"audioControlsHLayout"_s);
    QLayout* const volume = m_player.findChild<QLayout*>(u"volumeControlsHLayout"_s);
    QLayout* const transport = m_player.findChild<QLayout*>(u"playerContolsHLayout"_s);
    auto* const playing = new QHBoxLayout;
    auto* const position = new QHBoxLayout;
    position->addStretch();
    for (const auto& name :
         {"lblCurrentPos"_L1, "edCurrentPosition"_L1, "lblHeaderTotal"_L1, "edTotalDuration"_L1}) {
        position->addWidget(m_player.findChild<QWidget*>(name));
    }
    position->addStretch();
    while (QLayoutItem* const item = row->takeAt(0)) {
        if (item->spacerItem()) {
            delete item;
        }
    }
    playing->addLayout(volume);
    playing->addStretch();
    playing->addLayout(transport);
    playing->addStretch();
    row->addLayout(playing, 1);
    row->addLayout(position);
}

void FlexibleSizes::FitToFont()
{
    for (QLineEdit* field : {m_controls.edCurrentPosition, m_controls.edTotalDuration, m_controls.edSelectionStart,
                             m_controls.edSelectionEnd}) {
        FitTime(*field);
    }
    for (QPushButton* button : {m_controls.btnMute, m_controls.btnStop, m_controls.btnPlayPause,
                                m_controls.btnLoop, m_controls.btnSettings}) {
        FitButton(*button, {28, 22});
    }
    for (QPushButton* button : {m_controls.btnDecSelectionStart, m_controls.btnIncSelectionStart,
                                m_controls.btnDecSelectionEnd, m_controls.btnIncSelectionEnd}) {
        FitButton(*button, {20, 22});
    }
    FitIcon(*m_controls.btnLoadFile);
    BreakRows();
}

void FlexibleSizes::BreakRows()
{
    for (QBoxLayout* row : std::as_const(m_rows)) {
        row->setDirection(QBoxLayout::TopToBottom);
    }
    // Otherwise the rows as they are now would keep the player from getting narrower.
    m_player.setMinimumWidth(NeededWidth());
    for (QBoxLayout* row : std::as_const(m_rows)) {
        row->setDirection(QBoxLayout::LeftToRight);
    }
    for (QBoxLayout* row : std::as_const(m_rows)) {
        if (NeededWidth() <= m_player.width()) {
            break;
        }
        row->setDirection(QBoxLayout::TopToBottom);
    }
    for (QBoxLayout* row : std::as_const(m_rows)) {
        row->parentWidget()->updateGeometry();
    }
}

int FlexibleSizes::NeededWidth() const
{
    int width = 0;
    for (const QBoxLayout* row : m_rows) {
        QLayout& layout = *row->parentWidget()->layout();
        Refresh(layout);
        width = std::max(width, layout.totalMinimumSize().width());
    }
    return width;
}

} // namespace vantoraudio::vantorAudioEngine::UI
