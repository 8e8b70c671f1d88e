#include "render/bgfx/device/bgfx/BgfxDevice.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vantoraudio::bgfx::device {

BgfxDevice::BgfxDevice(Arrived arrived) : m_arrived(std::move(arrived)), m_processor(MakeSoftwareDevice()) {}

BgfxInstance::News BgfxDevice::News()
{
    return [this] {
        QMetaObject::invokeMethod(
            &m_here, [this] { OnNews(); }, Qt::QueuedConnection);
    };
}

bool BgfxDevice::Use(std::unique_ptr<BgfxInstance> instance)
{
    m_instance = std::move(instance);
    return m_instance != nullptr;
}

bool BgfxDevice::Draw(const Frame& frame, QImage& picture)
{
    Known& known = Ask(frame, picture);
    const bool isThere = m_instance->WaitFor(known.id);
    TakePictures();
    if (IsLost()) {
        return DrawInstead(frame, picture);
    }
    return isThere ? Show(known, picture) : m_processor->Draw(frame, picture);
}

bool BgfxDevice::DrawSoon(const Frame& frame, QImage& picture)
{
    Known& known = Ask(frame, picture);
    TakePictures();
    if (IsLost()) {
        return DrawInstead(frame, picture);
    }
    // There is no former picture to show while bgfx starts, nor, with a host's bgfx, after a change of the size.
    return known.image.size() == picture.size() ? Show(known, picture) : m_processor->Draw(frame, picture);
}

bool BgfxDevice::DrawInstead(const Frame& frame, QImage& picture)
{
    // grab() asks once only: it cannot wait for the next device.
    m_processor->Draw(frame, picture);
    return false;
}

void BgfxDevice::Forget(const QImage* picture)
{
    if (const auto known = m_known.find(picture); known != m_known.end()) {
        m_instance->Forget(known->second.id);
        m_known.erase(known);
    }
}

BgfxDevice::Known& BgfxDevice::Ask(const Frame& frame, const QImage& picture)
{
    Known& known = m_known[&picture];
    if (known.id == 0) {
        known.id = ++m_lastId;
    }
    FramePlan plan = PlanFrame(frame, picture.size());
    // A widget that is painted once more for the picture that has come asks for nothing new.
    if (plan != known.asked) {
        known.asked = plan;
        m_instance->Ask(known.id, std::move(plan));
    }
    return known;
}

bool BgfxDevice::Show(Known& known, QImage& picture)
{
    // Before the pixels are shared: afterwards a change of the scale would copy them.
    known.image.setDevicePixelRatio(picture.devicePixelRatio());
    picture = known.image;
    known.isNew = false;
    return true;
}

void BgfxDevice::TakePictures()
{
    for (BgfxInstance::Picture& taken : m_instance->TakePictures()) {
        const auto known = std::ranges::find(m_known, taken.id, [](const auto& entry) { return entry.second.id; });
        if (known != m_known.end()) {
            known->second.image = std::move(taken.image);
            known->second.isNew = true;
        }
    }
}

void BgfxDevice::OnNews()
{
    TakePictures();
    std::vector<const QImage*> changed;
    for (auto& [picture, known] : m_known) {
        if (std::exchange(known.isNew, false) || IsLost()) {
            changed.push_back(picture);
        }
    }
    for (const QImage* picture : changed) {
        m_arrived(picture);
    }
}

} // namespace vantoraudio::bgfx::device
