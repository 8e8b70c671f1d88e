#pragma once

#include <QtCore/QMap>
#include <QtGui/QImage>

#include <algorithm>
#include <cmath>

inline double Luminance(QRgb color)
{
    const auto linear = [](int component) {
        const double value = component / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

/** Between the colour that covers most of a picture and the one that stands out most from it, as the Web Content
 *  Accessibility Guidelines measure it. */
inline double ContrastIn(const QImage& picture)
{
    QMap<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            ++counts[picture.pixel(x, y)];
        }
    }
    const auto most = std::max_element(counts.cbegin(), counts.cend());
    const double background = Luminance(most.key());
    double contrast = 1.0;
    for (auto color = counts.keyBegin(); color != counts.keyEnd(); ++color) {
        const auto [darker, lighter] = std::minmax({background, Luminance(*color)});
        contrast = std::max(contrast, (lighter + 0.05) / (darker + 0.05));
    }
    return contrast;
}
