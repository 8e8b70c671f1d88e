#include "FailureBar.h"

#include "ButtonKeys.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QToolButton>

using namespace Qt::Literals::StringLiterals;

FailureBar::FailureBar(QWidget* parent) : QFrame(parent), m_sentence(new QLabel(this))
{
    setStyleSheet(u"FailureBar { background: #7a2e2e; }"
                  "#failure, #hideFailure { color: white; }"
                  "#hideFailure { border: 1px solid transparent; font-size: 14pt; }"
                  "#hideFailure:hover, #hideFailure:focus { border-color: white; }"_s);
    m_sentence->setObjectName("failure"_L1);
    m_sentence->setWordWrap(true);
    m_sentence->setTextFormat(Qt::PlainText);

    auto* hideButton = new QToolButton(this);
    hideButton->setObjectName("hideFailure"_L1);
    hideButton->setText(u"×"_s);
    hideButton->setToolTip(tr("Hide this message"));
    hideButton->setAccessibleName(hideButton->toolTip());
    connect(hideButton, &QToolButton::clicked, this, [this] { SetSentence(QString()); });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 4, 4);
    layout->addWidget(m_sentence, 1);
    layout->addWidget(hideButton, 0, Qt::AlignTop);
    hide();
}

void FailureBar::SetSentence(const QString& sentence)
{
    m_sentence->setText(sentence);
    setVisible(!sentence.isEmpty());
}

QString FailureBar::Sentence() const
{
    return m_sentence->text();
}

bool FailureBar::event(QEvent* event)
{
    return KeepsFromShortcuts(event, {Qt::Key_Space}) || QFrame::event(event);
}
