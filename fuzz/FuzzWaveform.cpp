#include "fuzz/WidgetFuzzing.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QPointer>
#include <QtWidgets/QScrollBar>

#include <cmath>

using namespace vantoraudio::vantorAudioEngine::UI;
using Fuzzing::Require;

namespace {

/** Calls the widget in any order, and again from within its signals. */
class WaveformDriver
{
public:
    explicit WaveformDriver(Fuzzing::Input& input) : m_input(input)
    {
        QObject::connect(m_widget.get(), &BGFXWaveformWidget::GetSamples, m_widget.get(),
                         [this](double, double, int) { Answer(); });
        QObject::connect(m_widget.get(), &BGFXWaveformWidget::SelectionChanged, m_widget.get(),
                         [this](std::pair<double, double>) { CallBack(); });
        QObject::connect(m_widget.get(), &BGFXWaveformWidget::AudioPositionChanged, m_widget.get(),
                         [this](double) { CallBack(); });
        QObject::connect(m_widget.get(), &BGFXWaveformWidget::SceneRectChanged, m_widget.get(),
                         [this](const QRectF&) { CallBack(); });
        m_widget->resize(160, 90);
    }

    void Run()
    {
        constexpr int mostCalls = 60;
        for (int i = 0; i < mostCalls && m_input.remaining_bytes() > 0; ++i) {
            Call();
            CheckGetters();
        }
        m_widget->grab();
        QCoreApplication::sendPostedEvents();
    }

private:
    void Call()
    {
        switch (m_input.ConsumeIntegralInRange(0, 9)) {
        case 0:
            ChangeFile();
            break;
        case 1:
            Select();
            break;
        case 2:
        case 3:
            Use();
            break;
        case 4:
            m_widget->UpdateAudioSampleBuffer(AnySamples());
            break;
        case 5:
            m_widget->SetAudioPosition(Number());
            m_widget->SetAudioPositionKeepingView(Number());
            break;
        case 6:
            m_widget->OnSceneRectChangeRequested(QRectF(Number(), Number(), Number(), Number()));
            break;
        case 7:
            m_widget->SetEditMode(m_input.ConsumeBool());
            m_widget->SetScrollBackToZoomOut(m_input.ConsumeBool());
            Choose();
            break;
        case 8:
            Decorate();
            break;
        default:
            m_widget->grab();
        }
    }

    void Choose()
    {
        m_widget->SetInteractions(Fuzzing::AnyInteractions(m_input));
        m_widget->SetFollowsPosition(m_input.ConsumeBool());
        m_widget->SetShowsPositionAtOnce(m_input.ConsumeBool());
        m_widget->SetKeepsViewFilled(m_input.ConsumeBool());
        m_widget->SetWheelZoomFactor(Number());
        m_widget->SetPositionRate(Number());
        m_widget->SetLabelsFit(m_input.ConsumeBool());
        m_widget->SetColorsFollowPalette(m_input.ConsumeBool());
        m_widget->SetTakesFocus(m_input.ConsumeBool());
    }

    void ChangeFile()
    {
        switch (m_input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            m_widget->Reset();
            break;
        case 1:
            m_widget->SetDelay(Number());
            break;
        default:
            m_widget->Initilize(Fuzzing::AnyFormat(m_input), Number());
        }
    }

    void Select()
    {
        switch (m_input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            m_widget->SetSelectedSnippet({Number(), Number()});
            break;
        case 1:
            m_widget->SetSelectionStartTime(Number());
            break;
        case 2:
            m_widget->ClearSelection();
            break;
        default:
            m_widget->SetSelectionEndTime(Number());
        }
    }

    /** As the user does. */
    void Use()
    {
        auto* diagram = m_widget->findChild<QWidget*>(QStringLiteral("BGFXWaveformDiagramWidget"));
        Require(diagram != nullptr);
        switch (m_input.ConsumeIntegralInRange(0, 3)) {
        case 0:
            Fuzzing::SendWheel(m_input, *diagram);
            break;
        case 1:
            m_widget->findChild<QScrollBar*>()->setValue(m_input.ConsumeIntegral<int>());
            break;
        case 2:
            m_widget->resize(m_input.ConsumeIntegralInRange(0, 200), m_input.ConsumeIntegralInRange(0, 120));
            break;
        default:
            Fuzzing::SendMouse(m_input, *diagram);
        }
    }

    void Decorate()
    {
        constexpr std::array setters{&BGFXWaveformWidget::SetAudioPositionMarkerColor,
                                     &BGFXWaveformWidget::SetAudioSelectionColor,
                                     &BGFXWaveformWidget::SetBackgroundColor,
                                     &BGFXWaveformWidget::SetFrameColor,
                                     &BGFXWaveformWidget::SetGridColor,
                                     &BGFXWaveformWidget::SetScaleColor,
                                     &BGFXWaveformWidget::SetWaveformColor};
        (m_widget.get()->*m_input.PickValueInArray(setters))(Fuzzing::AnyColor(m_input));
        m_widget->SetAudioPositionIcon(QStringLiteral("no such icon"));
    }

    void Answer()
    {
        if (m_input.ConsumeBool()) {
            m_widget->UpdateAudioSampleBuffer(AnySamples());
        }
        CallBack();
    }

    void CallBack()
    {
        constexpr int deepest = 3;
        if (m_depth < deepest && m_input.remaining_bytes() > 0 && m_input.ConsumeBool()) {
            ++m_depth;
            Call();
            --m_depth;
        }
    }

    QList<float> AnySamples()
    {
        QList<float> samples(m_input.ConsumeIntegralInRange(0, 500), static_cast<float>(Number()));
        samples.append({-0.5F, 0.5F});
        return samples;
    }

    /** A widget may tell again what it is told, and its sums may exceed what a number holds. */
    double Number()
    {
        const double number = m_input.Number();
        m_wasToldTimes = m_wasToldTimes && std::abs(number) < Fuzzing::beyondAllFiles;
        return number;
    }

    void CheckGetters() const
    {
        const auto [start, end] = m_widget->GetSelectedSnippet();
        Require(std::isfinite(start) && std::isfinite(end));
        Require(start == m_widget->GetSelectionStartTime() && end == m_widget->GetSelectionEndTime());
        Require(!m_wasToldTimes || std::isfinite(m_widget->GetAudioPosition()));
        Require(!m_wasToldTimes || std::isfinite(m_widget->GetDelay()));
        const auto [first, last] = m_widget->GetVisibleRange();
        const double time = m_widget->GetTimeAt({80, 45});
        Require(!m_wasToldTimes || (std::isfinite(first) && std::isfinite(last) && std::isfinite(time)));
        const auto [low, high] = m_widget->GetLevelAt({80, 45});
        Require(low <= high || (std::isnan(low) && std::isnan(high)));
    }

    Fuzzing::Input& m_input;
    std::unique_ptr<BGFXWaveformWidget> m_widget = std::make_unique<BGFXWaveformWidget>();
    bool m_wasToldTimes = true;
    int m_depth = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing::EnsureApplication();
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    WaveformDriver(input).Run();
    return 0;
}
