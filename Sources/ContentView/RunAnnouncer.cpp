#include "ContentView/RunAnnouncer.h"

#include "Look/Accessibility/Announcement.h"
#include "RunController/RunController.h"

#include <QAccessible>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace
{

/// Lines about success, failure and what is to be noted are never a script's.
bool isOwn(OutputKind kind)
{
    return kind == OutputKind::ok || kind == OutputKind::fail || kind == OutputKind::warn;
}

} // namespace

RunAnnouncer::RunAnnouncer(const RunController &run, QWidget *window) : QObject(window), m_run(run), m_window(window)
{
    connect(&run, &RunController::phaseChanged, this, [this] { Announcement::say(m_window, m_run.phase()); });
    connect(&run, &RunController::revisionChanged, this, &RunAnnouncer::tellOwnLines);
}

void RunAnnouncer::tellOwnLines()
{
    const Transcript &transcript = m_run.transcript();
    const Transcript::Position seen = std::exchange(m_seen, transcript.end());
    if (!QAccessible::isActive() || transcript.isEmpty())
        return;
    const TextView::Run last = transcript.text().runAt(transcript.end());
    if (isOwn(last.kind))
        Announcement::say(m_window, transcript.text().text(std::max(last.begin, seen), last.end));
}
