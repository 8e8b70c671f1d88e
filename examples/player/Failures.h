#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QString>

/** A sentence for a person that names the file and why it cannot be shown. */
QString DescribeOpenFailure(const QString& path, WavFile::AudioEngineReturnValue result);

/** The same for a file that opens but has nothing to hear, such as a header without any sample behind it. */
QString DescribeSilentFile(const QString& path);
