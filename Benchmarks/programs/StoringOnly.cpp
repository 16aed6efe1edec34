// The limit to compare with: the same child's output decoded and stored in one string, and an empty area repainted
// sixty times a second.
//
// StoringOnly [--alternating | --line-by-line] FILE

#include "OrbCLI/OrbCLI.h"
#include "shared/OutputArguments.h"
#include "shared/OutputMeasurement.h"

#include <QTest>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    QWidget area;
    area.resize(960, 760);
    area.show();
    if (!QTest::qWaitForWindowExposed(&area))
        return 1;
    QTimer frame;
    frame.setTimerType(Qt::PreciseTimer);
    frame.callOnTimeout(&area, qOverload<>(&QWidget::update));

    std::string stored;
    bool isOver = false;
    OutputMeasurement measurement(frames);
    measurement.begin(&area);
    frame.start(16);
    OrbCLI::stream(
        u"/bin/sh"_s, {u"-s"_s}, wanted.script, std::nullopt,
        [&](QUtf8StringView text, bool) { stored.append(text.data(), static_cast<std::size_t>(text.size())); },
        [&](int, const ProcessHandlePointer &) { isOver = true; });
    while (!isOver)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    frames.waitForFrame();
    measurement.takeMemory();
    measurement.end();
    measurement.print("storing only", static_cast<qint64>(stored.size()));
    return 0;
}
