#pragma once

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <functional>

/** Qt's own waits sleep for 10 ms at a time, in which a player could not notice what happens to its device or
 *  server. */
inline void WaitAwake(const std::function<bool()>& condition)
{
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (condition()) {
            loop.quit();
        }
    });
    timer.start(1);
    loop.exec();
}
