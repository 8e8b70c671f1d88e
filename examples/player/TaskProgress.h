#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

class QProgressBar;
class QPushButton;

/** A progress bar for the status bar with a button to cancel, which Space, Return and Escape press while it has
 * the focus. It shows itself for tasks that take a while only. */
class TaskProgress : public QWidget
{
    Q_OBJECT

public:
    explicit TaskProgress(QWidget* parent = nullptr);

    void ShowProgress(int progress, int min, int max, const QString& text);
    /** Whether there is something that the button can stop. */
    void SetCancellable(bool isCancellable);
    void End();

Q_SIGNALS:
    void CancelRequested();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QProgressBar* m_bar;
    QPushButton* m_cancel;
    QTimer m_delay;
    /** Of the latest report; there are thousands of them a second. */
    QString m_text;
};
