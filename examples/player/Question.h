#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

/** Something that is asked of a disk, on a thread of its own: a network disk may not answer for minutes, and
 * nobody waits for an answer that comes too late, not even the end of the program. GUI thread. */
template<typename Answer>
class Question
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /** What `ask` refers to must be its own. */
    explicit Question(std::function<Answer()> ask)
    {
        std::packaged_task<Answer()> task(std::move(ask));
        try {
            auto answer = task.get_future();
            std::thread(std::move(task)).detach();
            m_answer = std::move(answer);
        } catch (const std::system_error&) {
            // No thread can be had: there is no answer then.
        }
    }

    /** Waits for it until `deadline`; empty without it. To be called once. */
    [[nodiscard]] std::optional<Answer> AnswerUntil(Time deadline)
    {
        const bool isKnown = m_answer.valid() && m_answer.wait_until(deadline) == std::future_status::ready;
        return isKnown ? std::optional(m_answer.get()) : std::nullopt;
    }

private:
    std::future<Answer> m_answer;
};
