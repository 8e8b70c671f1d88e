#pragma once

#include <QtCore/QObject>
#include <QtCore/QRectF>
#include <QtCore/QStringList>

#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

inline QString Written(double value)
{
    return QString::number(value, 'g', 9);
}

/** Writes down what a diagram or a waveform widget emits, in order: "GetSamples(0, 10, 1)". */
class SignalRecorder : public QObject
{
public:
    template<typename Emitter>
    explicit SignalRecorder(Emitter& emitter)
    {
        connect(&emitter, &Emitter::GetSamples, this, [this](double start, double end, int stepSize) {
            Write("GetSamples", {Written(start), Written(end), QString::number(stepSize)});
        });
        connect(&emitter, &Emitter::SelectionChanged, this, [this](std::pair<double, double> selection) {
            Write("SelectionChanged", {Written(selection.first), Written(selection.second)});
        });
        connect(&emitter, &Emitter::AudioPositionChanged, this,
                [this](double position) { Write("AudioPositionChanged", {Written(position)}); });
        connect(&emitter, &Emitter::SceneRectChanged, this, [this](const QRectF& rect) {
            Write("SceneRectChanged", {Written(rect.left()), Written(rect.right())});
        });
        if constexpr (requires(Emitter & e) { e.GetTotalLength(); }) {
            connect(&emitter, &Emitter::Update, this, [this] { m_lines << QStringLiteral("Update"); });
        }
    }

    /** What was written since the last call. */
    QStringList Take() { return std::exchange(m_lines, {}); }

private:
    void Write(const char* name, const QStringList& arguments)
    {
        m_lines << QString::fromLatin1(name) + u'(' + arguments.join(QStringLiteral(", ")) + u')';
    }

    QStringList m_lines;
};

} // namespace vantoraudio::vantorAudioEngine::UI
