#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace vantoraudio::bgfx {

/** Objects by the number in their handle. */
template<typename Handle, typename Object>
class HandleTable
{
public:
    /** An invalid handle when all 65535 numbers are taken. */
    Handle Add(Object object)
    {
        const std::size_t slot = FreeSlot();
        if (slot >= MaxSlots) {
            return {};
        }
        m_slots[slot] = std::make_unique<Object>(std::move(object));
        m_next = slot + 1;
        ++m_count;
        return {static_cast<std::uint16_t>(slot)};
    }

    /** Null for handles that are invalid or destroyed. */
    [[nodiscard]] Object* Find(Handle handle) const
    {
        return handle.idx < m_slots.size() ? m_slots[handle.idx].get() : nullptr;
    }

    /** The first object that `matches`, or an invalid handle. */
    template<typename Predicate>
    [[nodiscard]] Handle FindIf(Predicate matches) const
    {
        for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
            if (m_slots[slot] && matches(*m_slots[slot])) {
                return {static_cast<std::uint16_t>(slot)};
            }
        }
        return {};
    }

    void Remove(Handle handle)
    {
        if (!Find(handle)) {
            return;
        }
        m_slots[handle.idx].reset();
        --m_count;
    }

    template<typename Visitor>
    void ForEach(Visitor visit)
    {
        for (auto& slot : m_slots) {
            if (slot) {
                visit(*slot);
            }
        }
    }

    [[nodiscard]] std::uint16_t Count() const { return m_count; }

private:
    static constexpr std::size_t MaxSlots = 65535;
    /** Numbers are handed out in turn while there are few, so that a handle kept too long meets nobody else's
     *  object. */
    static constexpr std::size_t TurnLength = 1024;

    std::size_t FreeSlot()
    {
        if (m_next < TurnLength && m_next >= m_slots.size()) {
            m_slots.resize(m_next + 1);
        }
        for (std::size_t tried = 0; tried < m_slots.size(); ++tried) {
            const std::size_t slot = (m_next + tried) % m_slots.size();
            if (!m_slots[slot]) {
                return slot;
            }
        }
        if (m_slots.size() >= MaxSlots) {
            return MaxSlots;
        }
        m_slots.emplace_back();
        return m_slots.size() - 1;
    }

    std::vector<std::unique_ptr<Object>> m_slots;
    std::size_t m_next = 0;
    std::uint16_t m_count = 0;
};

} // namespace vantoraudio::bgfx
