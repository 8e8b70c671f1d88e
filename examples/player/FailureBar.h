#pragma once

#include <QtWidgets/QFrame>

class QLabel;

/** The sentence of the last failure, with a button that puts it away. It is hidden while there is none. */
class FailureBar : public QFrame
{
    Q_OBJECT

public:
    explicit FailureBar(QWidget* parent = nullptr);

    /** An empty one hides the bar. */
    void SetSentence(const QString& sentence);
    [[nodiscard]] QString Sentence() const;

protected:
    bool event(QEvent* event) override;

private:
    QLabel* m_sentence;
};
