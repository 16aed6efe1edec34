#pragma once

// Tells assistive technology how a run goes, whichever tab is shown: each step as it begins, and each line of
// Tidewell's own about its end or a refusal. What the script prints is not told: that is read in the output pane.

#include "Transcript/Transcript.h"

#include <QObject>

class QWidget;
class RunController;

class RunAnnouncer : public QObject
{
    Q_OBJECT

public:
    /// `run` must outlive this, which belongs to `window`.
    RunAnnouncer(const RunController &run, QWidget *window);

private:
    void tellOwnLines();

    const RunController &m_run;
    QWidget *m_window;
    /// The transcript's end when it was last looked at.
    Transcript::Position m_seen = 0;
};
