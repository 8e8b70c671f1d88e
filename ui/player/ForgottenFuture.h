#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QFutureWatcher>

namespace vantoraudio::vantorAudioEngine::UI {

/** Makes the watcher tell nothing more of its future, also not what is on its way already: a late report would be
 *  taken for one of the next future, whose result the slot would then wait for. */
template<typename Result>
void Forget(QFutureWatcher<Result>& watcher)
{
    watcher.setFuture(QFuture<Result>());
    QCoreApplication::removePostedEvents(&watcher, QEvent::FutureCallOut);
}

} // namespace vantoraudio::vantorAudioEngine::UI
