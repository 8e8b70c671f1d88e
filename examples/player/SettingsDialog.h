#pragma once

#include "Appearance.h"

#include <QtWidgets/QDialog>

#include <array>

class QPushButton;

/** Lets the user choose theme, colours and what the wheel does. Every change is seen at once; Cancel takes it
 * back. */
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(const Appearance& appearance, QWidget* parent = nullptr);

Q_SIGNALS:
    void Changed(const Appearance& appearance);

protected:
    void changeEvent(QEvent* event) override;

private:
    void ChooseColor(std::size_t role);
    void ShowColors();
    void Change();

    const Appearance m_before;
    Appearance m_appearance;
    std::array<QPushButton*, Appearance::roleCount> m_colorButtons{};
};
