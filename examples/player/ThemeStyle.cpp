#include "ThemeStyle.h"

#include <QtGui/QPainter>
#include <QtWidgets/QStyleOption>

using namespace Qt::Literals::StringLiterals;

namespace {

/** Thicker, in the colour of what is chosen, around what is switched on or has the focus. */
void DrawOutlineOf(const QStyleOption& option, const QRect& rect, QPainter& painter)
{
    const bool stands = option.state & (QStyle::State_On | QStyle::State_HasFocus);
    const double width = stands ? 2.0 : 1.0;
    painter.save();
    // Where a pixel of the program is one and a half of the screen, a line without this falls off the edge.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(option.palette.color(stands ? QPalette::Highlight : QPalette::WindowText), width,
                        Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const double half = width / 2.0;
    painter.drawRect(QRectF(rect).adjusted(half, half, -half, -half));
    painter.restore();
}

} // namespace

ThemeStyle::ThemeStyle(bool hasOutlines) : QProxyStyle(u"Fusion"_s), m_hasOutlines(hasOutlines) {}

int ThemeStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returnData) const
{
    // They are drawn for light windows only.
    return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0
                                                       : QProxyStyle::styleHint(hint, option, widget, returnData);
}

void ThemeStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (!m_hasOutlines) {
        return;
    }
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

void ThemeStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (m_hasOutlines && element == CE_ProgressBarGroove) {
        DrawOutlineOf(*option, option->rect, *painter);
    }
}

void ThemeStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                    const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (!m_hasOutlines) {
        return;
    }
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

void ThemeStyle::DrawOutline(QPainter& painter, const QStyleOptionComplex& option, ComplexControl control,
                             SubControl part, const QWidget* widget) const
{
    DrawOutlineOf(option, subControlRect(control, &option, part, widget), painter);
}
