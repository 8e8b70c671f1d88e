#include "TaskProgress.h"

#include "ButtonKeys.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

#include <chrono>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

TaskProgress::TaskProgress(QWidget* parent)
    : QWidget(parent), m_bar(new QProgressBar(this)), m_cancel(new QPushButton(tr("Cancel"), this))
{
    m_bar->setFormat(u"%p %"_s);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancel);
    // Return presses it, too.
    m_cancel->setAutoDefault(true);
    connect(m_cancel, &QPushButton::clicked, this, &TaskProgress::CancelRequested);
    m_delay.setSingleShot(true);
    m_delay.setInterval(200ms);
    m_delay.callOnTimeout(this, &QWidget::show);
    SetCancellable(false);
    hide();
}

void TaskProgress::ShowProgress(int progress, int min, int max, const QString& text)
{
    m_bar->setRange(min, max);
    m_bar->setValue(progress);
    if (text != m_text) {
        m_text = text;
        m_bar->setFormat(text.isEmpty() ? u"%p %"_s : QString(text + u" %p %"_s));
        m_bar->setMinimumWidth(m_bar->fontMetrics().horizontalAdvance(text + u" 100 % "_s));
    }
    if (isHidden() && !m_delay.isActive()) {
        m_delay.start();
    }
}

void TaskProgress::SetCancellable(bool isCancellable)
{
    m_cancel->setVisible(isCancellable);
}

void TaskProgress::End()
{
    m_delay.stop();
    hide();
}

bool TaskProgress::event(QEvent* event)
{
    return KeepsFromShortcuts(event, {Qt::Key_Space, Qt::Key_Escape}) || QWidget::event(event);
}

/** Of the button that has the focus. */
void TaskProgress::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT CancelRequested();
    } else {
        QWidget::keyPressEvent(event);
    }
}
