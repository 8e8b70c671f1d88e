#pragma once

#include <QtGui/QPalette>
#include <QtWidgets/QProxyStyle>

/** White on black, what is chosen in yellow. */
QPalette HighContrastPalette();

/** Fusion with outlines that show on black: its own are darker than the window. */
class HighContrastStyle : public QProxyStyle
{
    Q_OBJECT

public:
    HighContrastStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

private:
    void DrawOutline(QPainter& painter, const QStyleOptionComplex& option, ComplexControl control, SubControl part,
                     const QWidget* widget) const;
};
