#include "engine/samples/S24Samples.h"

namespace vantoraudio::AudioEngine {

QByteArray WidenS24Block(QByteArrayView block)
{
    const qsizetype count = block.size() / 3;
    QByteArray widened(count * 4, Qt::Uninitialized);
    for (qsizetype i = 0; i < count; ++i) {
        qToLittleEndian(S24InS32(block.data() + 3 * i), widened.data() + 4 * i);
    }
    return widened;
}

} // namespace vantoraudio::AudioEngine
