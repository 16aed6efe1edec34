// The plainest window that shows a child's output: a stock editor that is given what arrived once a frame and stays at
// its end.
//
// StockEditor [--alternating | --line-by-line] FILE

#include "OrbCLI/OrbCLI.h"
#include "shared/OutputArguments.h"
#include "shared/OutputMeasurement.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>

using namespace Qt::StringLiterals;

int main(int argumentCount, char *arguments[])
{
    FrameWatch frames(argumentCount, arguments);
    const OutputArguments wanted = OutputArguments::read();
    QPlainTextEdit editor;
    editor.setReadOnly(true);
    editor.setUndoRedoEnabled(false);
    editor.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    editor.resize(960, 760);
    editor.show();
    if (!QTest::qWaitForWindowExposed(&editor))
        return 1;

    qint64 bytes = 0;
    QString waiting;
    const auto show = [&] {
        if (waiting.isEmpty())
            return;
        QTextCursor end(editor.document());
        end.movePosition(QTextCursor::End);
        end.insertText(waiting);
        waiting.clear();
        editor.verticalScrollBar()->setValue(editor.verticalScrollBar()->maximum());
    };
    QTimer frame;
    frame.setTimerType(Qt::PreciseTimer);
    frame.callOnTimeout(show);

    bool isOver = false;
    OutputMeasurement measurement(frames);
    measurement.begin(editor.viewport());
    frame.start(16);
    OrbCLI::stream(
        u"/bin/sh"_s, {u"-s"_s}, wanted.script, std::nullopt,
        [&](QUtf8StringView text, bool) {
            bytes += text.size();
            waiting += text.toString();
        },
        [&](int, const ProcessHandlePointer &) { isOver = true; });
    while (!isOver)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    show();
    editor.viewport()->update();
    frames.waitForFrame();
    measurement.takeMemory();
    measurement.end();
    measurement.print("stock editor", bytes);
    return 0;
}
