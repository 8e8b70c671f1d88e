#pragma once

#include "render/bgfx/device/Device.h"

#include <QtCore/QObject>

#include <memory>

namespace vantoraudio::bgfx {

/**
 * The device that all widgets draw with. It is made when the first one draws, goes with the application object,
 * and is replaced by one that draws in software when it stops working. GUI thread only.
 */
class DrawingDevice : public QObject
{
    Q_OBJECT

public:
    static DrawingDevice& Get();

    /** Makes the device where there is none, OpenGL if it can be had, and replaces one that is lost. False when
     * there can be none, as after the end of the application object. */
    bool Ensure();
    /** Draws with `device` from now on; null stands for none. Gives the former one back first. */
    void Adopt(std::unique_ptr<device::Device> device);
    /** Draws with a device of this kind from now on. False where it cannot be had: there is none then. */
    bool Use(device::Kind kind);
    /** Gives the device back. Does nothing without one. */
    void Shutdown() { Adopt(nullptr); }

    /** None without a device. */
    [[nodiscard]] device::Kind Kind() const;
    /** The largest width and height of a picture, pixels; 0 without a device. */
    [[nodiscard]] int MaxSide() const;
    /** The device stopped working; the next Ensure() replaces it. */
    [[nodiscard]] bool IsLost() const { return m_isLost; }

    /** Draws what is recorded into `picture`. False leaves it: there is no device, or it is lost. */
    bool DrawInto(QImage& picture);

Q_SIGNALS:
    /** The device is about to go. It still works, unless it was lost. */
    void AboutToShutDown();

private:
    DrawingDevice() = default;

    std::unique_ptr<device::Device> m_device;
    bool m_isLost = false;
};

} // namespace vantoraudio::bgfx
