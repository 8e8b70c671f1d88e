#pragma once

#include <QtCore/QString>

#include <optional>

/** Seconds from what a person types: "7.5", "1:30", "1:02:03.250". A comma is as good as a point. Minutes and
 * seconds behind a colon are below 60. Empty for everything else. */
std::optional<double> ParseTime(const QString& text);

/** Hours, minutes, seconds and milliseconds: "1:02:03.250", or "2:03.250" in the first hour. Below 0 and what is
 * not finite counts as 0. */
QString TextOfTime(double seconds);
