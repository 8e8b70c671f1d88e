#include "GoTo.h"

#include "Times.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

GoTo::GoTo(double position, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Go to"));
    auto* time = new QLineEdit(TextOfTime(position), this);
    time->selectAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(time, &QLineEdit::textChanged, buttons->button(QDialogButtonBox::Ok),
            [ok = buttons->button(QDialogButtonBox::Ok)](const QString& text) {
                ok->setEnabled(ParseTime(text).has_value());
            });
    connect(this, &QDialog::accepted, time, [this, time] {
        if (const auto seconds = ParseTime(time->text())) {
            Q_EMIT Chosen(*seconds);
        }
    });

    auto* layout = new QFormLayout(this);
    layout->addRow(tr("&Time:"), time);
    layout->addRow(new QLabel(tr("Such as 7.5, 1:30 or 1:02:03.250"), this));
    layout->addRow(buttons);
}
