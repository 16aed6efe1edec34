// How a child's output comes through the real application: from the click on Run until the run has ended and the pane
// has painted its end.
//
// ShowingOutput [--alternating | --line-by-line] FILE

#include "shared/OutputArguments.h"
#include "shared/OutputMeasurement.h"
#include "shared/RealWindow.h"

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    RealWindow real;
    real.type(wanted.script);
    QTest::qWait(500); // the first listing and its painting are over

    // The line about the exit status is of another kind, so it makes the transcript drop what was too much; before it,
    // the transcript holds all.
    OutputMeasurement measurement(frames);
    const TextStore::Position allOfIt = real.run().transcript().end() + wanted.bytes;
    bool isAllThere = false;
    int framesBefore = 0;
    QObject::connect(&real.run(), &RunController::revisionChanged, &real.window(), [&] {
        framesBefore = frames.count();
        if (!isAllThere && real.run().transcript().end() >= allOfIt) {
            isAllThere = true;
            measurement.takeMemory();
        }
    });
    measurement.begin(real.pane().viewport());
    real.press(u"Run"_s);
    while (real.run().isRunning())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    // It may have been painted before the run was over in every respect.
    frames.waitForFrameAfter(framesBefore);
    measurement.end();
    RealWindow::expect(isAllThere && real.showsEnd());
    measurement.print("Tidewell", wanted.bytes);
    return 0;
}
