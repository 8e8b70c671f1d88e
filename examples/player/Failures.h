#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QString>

// Sentences for a person, which name the file and the reason.

QString DescribeOpenFailure(const QString& path, WavFile::AudioEngineReturnValue result);

/** For a file that opens but has nothing to hear, such as a header without any sample behind it. */
QString DescribeSilentFile(const QString& path);

QString DescribeExportFailure(const QString& path);

/** For a channel of the open file that could not be prepared for playing. */
QString DescribeChannelFailure(const QString& path);

/** For a file that stands where another one is to be written. */
QString DescribeExistingFile(const QString& path);
