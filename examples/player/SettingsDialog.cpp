#include "SettingsDialog.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

using namespace Qt::Literals::StringLiterals;

SettingsDialog::SettingsDialog(const Appearance& appearance, QWidget* parent)
    : QDialog(parent), m_before(appearance), m_appearance(appearance)
{
    setWindowTitle(tr("Settings"));
    auto* layout = new QFormLayout(this);

    auto* theme = new QComboBox(this);
    theme->setObjectName("theme"_L1);
    theme->addItems(Appearance::ThemeNames());
    theme->setCurrentIndex(static_cast<int>(appearance.theme));
    connect(theme, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_appearance.theme = static_cast<Appearance::Theme>(index);
        Change();
    });
    layout->addRow(tr("Theme"), theme);

    for (std::size_t role = 0; role < Appearance::roleCount; ++role) {
        m_colorButtons[role] = new QPushButton(this);
        m_colorButtons[role]->setObjectName(QLatin1StringView(Appearance::Roles()[role].key));
        connect(m_colorButtons[role], &QPushButton::clicked, this, [this, role] { ChooseColor(role); });
        layout->addRow(QCoreApplication::translate("Appearance", Appearance::Roles()[role].label),
                       m_colorButtons[role]);
    }

    auto* scroll = new QCheckBox(tr("Ctrl and the wheel toward you zooms out"), this);
    scroll->setObjectName("scroll"_L1);
    scroll->setChecked(appearance.scrollBackToZoomOut);
    connect(scroll, &QCheckBox::toggled, this, [this](bool checked) {
        m_appearance.scrollBackToZoomOut = checked;
        Change();
    });
    layout->addRow(scroll);

    auto* notches = new QSpinBox(this);
    notches->setObjectName("notches"_L1);
    notches->setRange(1, Appearance::mostZoomNotches);
    notches->setValue(appearance.zoomNotches);
    connect(notches, &QSpinBox::valueChanged, this, [this](int value) {
        m_appearance.zoomNotches = value;
        Change();
    });
    layout->addRow(tr("Notches of the wheel for twice the view"), notches);

    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::rejected, this, [this] { Q_EMIT Changed(m_before); });
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
            [this, theme, scroll, notches] {
                m_appearance.colors = {};
                theme->setCurrentIndex(0);
                scroll->setChecked(true);
                notches->setValue(Appearance().zoomNotches);
                Change();
            });
    layout->addRow(buttons);
    ShowColors();
}

void SettingsDialog::ChooseColor(std::size_t role)
{
    const QColor color = QColorDialog::getColor(m_appearance.ColorOf(role), this);
    if (color.isValid()) {
        m_appearance.colors[role] = color;
        Change();
    }
}

void SettingsDialog::ShowColors()
{
    for (std::size_t role = 0; role < Appearance::roleCount; ++role) {
        const int height = fontMetrics().height();
        QPixmap swatch(3 * height, height);
        swatch.fill(m_appearance.ColorOf(role));
        m_colorButtons[role]->setIconSize(swatch.size());
        m_colorButtons[role]->setIcon(swatch);
        m_colorButtons[role]->setEnabled(!m_appearance.IsHighContrast());
    }
}

void SettingsDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    // The system's palette became dark or light; the buttons come after the first ones of these events.
    if (event->type() == QEvent::PaletteChange && m_colorButtons.back()) {
        ShowColors();
    }
}

void SettingsDialog::Change()
{
    Q_EMIT Changed(m_appearance);
    ShowColors();
}
