#pragma once

#include <QtCore/QString>

// Sentences for a person, which name the file and the reason.

QString DescribeExportFailure(const QString& path);

/** For a channel of the open file that could not be prepared for playing. */
QString DescribeChannelFailure(const QString& path);

/** For a file that is open and does not play. */
QString DescribePlaybackFailure(const QString& path, const QString& reason);

/** For a file that stands where another one is to be written. */
QString DescribeExistingFile(const QString& path);

/** Asks whether a file that stands there is to be replaced. */
QString DescribeReplacement(const QString& path);

/** The same for the file that is open. */
QString DescribeLossOfTheOpenFile(const QString& path);
