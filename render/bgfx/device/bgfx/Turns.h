#pragma once

namespace vantoraudio::bgfx::device {

/** Whose turn it is among those who wait, a map: the first one behind `last`, or else the first of all. Thus one
 * who asks again and again keeps nobody waiting. The end where nobody waits. */
template<typename Waiting>
[[nodiscard]] auto NextInTurn(Waiting& waiting, const typename Waiting::key_type& last)
{
    const auto next = waiting.upper_bound(last);
    return next != waiting.end() ? next : waiting.begin();
}

} // namespace vantoraudio::bgfx::device
