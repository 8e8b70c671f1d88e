#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtTest/QtTest>

#ifdef VANTOR_HAS_BGFX
#    include <bgfx/c99/bgfx.h>
#endif

using namespace vantoraudio::vantorAudioEngine::UI;

/** The library and this program have a copy of bgfx each, as a host and the library that it loads. */
class HostRendererTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesWhatIsNoRenderer()
    {
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(nullptr, 0, 0, 2));
        BGFXWaveformWidget::HostFrameEnded(1);
        BGFXWaveformWidget::LeaveHostRenderer();
        QCOMPARE(BGFXWaveformWidget::GetDrawingDevice(), BGFXWaveformWidget::DrawingDevice::None);
    }

#ifndef VANTOR_HAS_BGFX
    void drawsInTheHostsFrames()
    {
        QSKIP("the library is built without bgfx");
    }
#else
    void refusesARendererThatIsNotRunning()
    {
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, FirstView, Views));
    }

    void drawsInTheHostsFrames()
    {
        StartBgfx();
        if (!m_runs)
            QSKIP("bgfx cannot be started here");
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION + 1, FirstView, Views));
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, FirstView, 1));
        const auto end = quint16(Bgfx().get_caps()->limits.maxViews);
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, quint16(end - 1), 2));
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, 0, quint16(end + 1)));
        QVERIFY(!BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, 65535, 65535));
        QVERIFY(BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, quint16(end - 2), 2));
        {
            const auto first = MakeWaveform({0, 0}, QColor(200, 30, 40));
            const auto second = MakeWaveform({0, 250}, QColor(20, 60, 210));
            QVERIFY(BGFXWaveformWidget::UseHostRenderer(&Bgfx(), BGFX_API_VERSION, FirstView, Views));
            QCOMPARE(BGFXWaveformWidget::GetDrawingDevice(), BGFXWaveformWidget::DrawingDevice::Bgfx);
            QVERIFY(BGFXWaveformWidget::GetDrawingDeviceName().contains(Renderer()));

            QTRY_VERIFY(m_framesWithDraws >= 2);
            QTRY_VERIFY(IsIdle()); // all pictures have come, and nobody asks for them again
            QVERIFY(Shows(*first, QColor(200, 30, 40)));
            QVERIFY(Shows(*second, QColor(20, 60, 210)));

            second->SetBackgroundColor(QColor(30, 190, 20));
            second->Update();
            m_framesWithDraws = 0;
            QTRY_VERIFY(m_framesWithDraws > 0);
            QTRY_VERIFY(IsIdle());
            QTRY_VERIFY(Shows(*second, QColor(30, 190, 20)));
            QVERIFY(Shows(*first, QColor(200, 30, 40)));

            BGFXWaveformWidget::LeaveHostRenderer();
            QTRY_COMPARE(Textures(), m_texturesBefore);
            // They go on without the host.
            m_framesWithDraws = 0;
            first->SetBackgroundColor(QColor(10, 160, 170));
            first->Update();
            QTRY_VERIFY(Shows(*first, QColor(10, 160, 170)));
            QCOMPARE(m_framesWithDraws, 0);
        }
        EndBgfx();
    }

    void choosesADeviceAgainAfterALostHost()
    {
        StartBgfx();
        if (!m_runs)
            QSKIP("bgfx cannot be started here");
        static bgfx_interface_vtbl_t table = Bgfx();
        static bool isLost = false;
        table.get_renderer_type = [] { return isLost ? BGFX_RENDERER_TYPE_NOOP : Bgfx().get_renderer_type(); };
        {
            const auto waveform = MakeWaveform({0, 0}, QColor(200, 30, 40));
            QVERIFY(BGFXWaveformWidget::UseHostRenderer(&table, BGFX_API_VERSION, FirstView, Views));
            QTRY_VERIFY(m_framesWithDraws > 0);
            isLost = true;
            QTRY_VERIFY(BGFXWaveformWidget::GetDrawingDevice() != BGFXWaveformWidget::DrawingDevice::Bgfx);

            BGFXWaveformWidget::LeaveHostRenderer();
            waveform->SetBackgroundColor(QColor(20, 60, 210));
            waveform->Update();
            QTRY_COMPARE(BGFXWaveformWidget::GetDrawingDevice(), BGFXWaveformWidget::DrawingDevice::Bgfx);
            QTRY_VERIFY(Shows(*waveform, QColor(20, 60, 210)));
        }
        EndBgfx();
    }

private:
    static constexpr quint16 FirstView = 100;
    /** For one picture in each frame: the others wait. */
    static constexpr quint16 Views = 2;

    static const bgfx_interface_vtbl_t& Bgfx()
    {
        return *bgfx_get_interface(BGFX_API_VERSION);
    }
    static QString Renderer()
    {
        return QString::fromUtf8(Bgfx().get_renderer_name(Bgfx().get_renderer_type()));
    }
    static int Textures()
    {
        return Bgfx().get_stats()->numTextures;
    }

    void StartBgfx()
    {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            return;
        // On this thread, as a program without a render thread has it.
        Bgfx().render_frame(-1);
        bgfx_init_t settings;
        Bgfx().init_ctor(&settings);
        settings.type = BGFX_RENDERER_TYPE_OPENGL;
        settings.fallback = false;
        settings.resolution.width = 0;
        settings.resolution.height = 0;
        m_runs = Bgfx().init(&settings);
        if (m_runs) {
            m_texturesBefore = Textures();
            m_framesWithDraws = 0;
            m_frames.callOnTimeout(this, &HostRendererTest::EndFrame);
            m_frames.start(2);
        }
    }
    void EndBgfx()
    {
        m_frames.stop();
        m_frames.disconnect();
        Bgfx().shutdown();
    }

    /** What is drawn in the host's frames are waveforms: the host itself draws nothing. */
    void EndFrame()
    {
        BGFXWaveformWidget::HostFrameEnded(Bgfx().frame(BGFX_FRAME_NONE));
        const bool hasDraws = Bgfx().get_stats()->numDraw > 0;
        m_framesWithDraws += hasDraws ? 1 : 0;
        m_framesWithoutDraws = hasDraws ? 0 : m_framesWithoutDraws + 1;
    }
    [[nodiscard]] bool IsIdle() const
    {
        return m_framesWithoutDraws > 10;
    }

    static std::unique_ptr<BGFXWaveformWidget> MakeWaveform(QPoint place, const QColor& background)
    {
        auto waveform = std::make_unique<BGFXWaveformWidget>(nullptr);
        waveform->setGeometry(QRect(place, QSize(300, 160)));
        waveform->SetBackgroundColor(background);
        waveform->show();
        return waveform;
    }
    /** Whether most of what is on the screen is of this colour. */
    static bool Shows(BGFXWaveformWidget& waveform, const QColor& color)
    {
        const QImage image = waveform.screen()->grabWindow(waveform.winId()).toImage();
        int matching = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                matching += image.pixelColor(x, y) == color ? 1 : 0;
        }
        return 2 * matching > image.width() * image.height();
    }

    QTimer m_frames;
    int m_framesWithDraws = 0;
    int m_framesWithoutDraws = 0;
    bool m_runs = false;
    int m_texturesBefore = 0;
#endif
};

QTEST_MAIN(HostRendererTest)
#include "tst_hostrenderer.moc"
