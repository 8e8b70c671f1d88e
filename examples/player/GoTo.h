#pragma once

#include <QtWidgets/QDialog>

/** Asks for a time, as a person writes it, and tells it when it is confirmed. */
class GoTo : public QDialog
{
    Q_OBJECT

public:
    /** `position` in seconds is there to be typed over. */
    explicit GoTo(double position, QWidget* parent = nullptr);

Q_SIGNALS:
    void Chosen(double seconds);
};
