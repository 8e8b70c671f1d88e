#include "HighContrast.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyleOption>

using namespace Qt::Literals::StringLiterals;

namespace {

/** Thicker, in the colour of what is chosen, around what is switched on or has the focus. */
void DrawOutlineOf(const QStyleOption& option, const QRect& rect, QPainter& painter)
{
    const bool stands = option.state & (QStyle::State_On | QStyle::State_HasFocus);
    const int width = stands ? 2 : 1;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(option.palette.color(stands ? QPalette::Highlight : QPalette::WindowText), width));
    painter.drawRect(rect.adjusted(width / 2, width / 2, -1, -1));
    painter.restore();
}

} // namespace

QPalette HighContrastPalette()
{
    const QColor black(0, 0, 0);
    const QColor white(255, 255, 255);
    const QColor yellow(255, 255, 0);
    const QColor faint(0xa6, 0xa6, 0xa6);
    QPalette palette(QColor(0x30, 0x30, 0x30), black);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase}) {
        palette.setColor(role, black);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, white);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    for (const auto role : {QPalette::Highlight, QPalette::Link, QPalette::LinkVisited}) {
        palette.setColor(role, yellow);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    palette.setColor(QPalette::HighlightedText, black);
    palette.setColor(QPalette::PlaceholderText, faint);
    return palette;
}

HighContrastStyle::HighContrastStyle() : QProxyStyle(u"Fusion"_s) {}

void HighContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                      const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    switch (element) {
    case PE_PanelButtonCommand:
    case PE_PanelButtonTool:
    case PE_FrameLineEdit:
    case PE_IndicatorCheckBox:
    case PE_FrameMenu:
        DrawOutlineOf(*option, option->rect, *painter);
        break;
    default:
        break;
    }
}

void HighContrastStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                    const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_ProgressBarGroove) {
        DrawOutlineOf(*option, option->rect, *painter);
    }
}

void HighContrastStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                           QPainter* painter, const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    switch (control) {
    case CC_ComboBox:
        DrawOutlineOf(*option, option->rect, *painter);
        break;
    case CC_SpinBox:
        DrawOutline(*painter, *option, control, SC_SpinBoxFrame, widget);
        break;
    case CC_Slider:
        DrawOutline(*painter, *option, control, SC_SliderHandle, widget);
        break;
    case CC_ScrollBar:
        DrawOutline(*painter, *option, control, SC_ScrollBarSlider, widget);
        break;
    default:
        break;
    }
}

void HighContrastStyle::DrawOutline(QPainter& painter, const QStyleOptionComplex& option, ComplexControl control,
                                    SubControl part, const QWidget* widget) const
{
    DrawOutlineOf(option, subControlRect(control, &option, part, widget), painter);
}
