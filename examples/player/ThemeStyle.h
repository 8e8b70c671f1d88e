#pragma once

#include <QtWidgets/QProxyStyle>

/** Fusion for the program's own themes. */
class ThemeStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /** Outlines that show on black: Fusion's own are darker than the window. */
    explicit ThemeStyle(bool hasOutlines);
    bool HasOutlines() const { return m_hasOutlines; }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override;

private:
    void DrawOutline(QPainter& painter, const QStyleOptionComplex& option, ComplexControl control, SubControl part,
                     const QWidget* widget) const;

    const bool m_hasOutlines;
};
