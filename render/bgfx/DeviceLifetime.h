#pragma once

#include <QtCore/QObject>

namespace vantoraudio::bgfx {

/** Tells those who draw about the coming and going of the drawing device. GUI thread only. */
class DeviceLifetime : public QObject
{
    Q_OBJECT

public:
    static DeviceLifetime& Get();

    /** Makes a device of the automatic choice when there is none, and one that draws in software when the one of
     *  before is lost. False when none can be had, as after the end of the application object. */
    static bool Ensure();
    /** The device stopped working; the next Ensure() replaces it. */
    static bool IsLost();

Q_SIGNALS:
    /** shutdown() has begun; the device still works. */
    void AboutToShutDown();
    /** shutdown() is over: pictures and programs are gone. */
    void HasShutDown();

private:
    DeviceLifetime() = default;
};

} // namespace vantoraudio::bgfx
