#pragma once

#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/bgfx/BgfxInstance.h"

#include <QtCore/QObject>

#include <memory>
#include <optional>

namespace vantoraudio::bgfx {

/**
 * The device that all widgets draw with. It is made when the first one draws, goes with the application object,
 * and is replaced by the next kind of device, with a warning, when it stops working. bgfx goes with the last
 * widget, too. GUI thread only.
 */
class DrawingDevice : public QObject
{
    Q_OBJECT

public:
    static DrawingDevice& Get();

    /** Makes the device where there is none, the first kind that can be had, and replaces one that is lost. Does
     * not wait for bgfx to start. False when there can be none, as after the end of the application object. */
    bool Ensure();
    /** Draws with `device` from now on; null stands for none. Gives the former one back first. */
    void Adopt(std::unique_ptr<device::Device> device);
    /** Draws with a device of this kind from now on, once it is ready. False where it cannot be had: there is none
     * then. */
    bool Use(device::Kind kind);
    /** Draws with the bgfx that the host runs. False leaves everything as it was. */
    bool UseHost(const device::HostRenderer& host);
    /** Draws without the host's bgfx again. */
    void LeaveHost();
    /** What frame() of the host's bgfx has returned. */
    void OnHostFrame(std::uint32_t number);
    /** Gives the device back. Does nothing without one. */
    void Shutdown() { Adopt(nullptr); }

    /** None without a device. */
    [[nodiscard]] device::Kind Kind() const;
    /** See Device::RendererName(). */
    [[nodiscard]] QString RendererName() const;
    /** The largest width and height of a picture, pixels; 0 without a device. */
    [[nodiscard]] int MaxSide() const;
    /** The device stopped working; the next Ensure() replaces it. */
    [[nodiscard]] bool IsLost() const { return m_isLost; }

    /** Draws what is recorded into `picture`. False leaves it: there is no device, or it is lost. A picture that
     * may lag can get a former frame of its own; PictureArrived() tells when there is a later one. */
    bool DrawInto(QImage& picture, bool mayLag = false);
    /** There will be no more frames for `picture`, or it is gone. */
    void Forget(const QImage* picture);

    /** Widgets that draw count themselves. */
    void AddView() { ++m_views; }
    void RemoveView();

Q_SIGNALS:
    /** To draw the frame of `picture` again is worth while. */
    void PictureArrived(const QImage* picture);
    /** The device is about to go. It still works, unless it was lost. */
    void AboutToShutDown();

private:
    DrawingDevice();
    bool Make(device::Kind kind);
    bool MakeFirstFrom(device::Kind kind);
    bool ReplaceLost();

    std::unique_ptr<device::Device> m_device;
    bool m_isLost = false;
    /** What Ensure() tries first. */
    device::Kind m_firstKind;
    std::optional<device::HostRenderer> m_host;
    /** It is not drawn with until the host hands it over again. */
    bool m_isHostLost = false;
    int m_views = 0;
};

} // namespace vantoraudio::bgfx
