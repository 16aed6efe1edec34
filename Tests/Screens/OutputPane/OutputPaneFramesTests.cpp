#include "Screens/OutputPane/OutputPaneTest.h"

#include <QElapsedTimer>

using namespace Qt::StringLiterals;

namespace
{

/// Adds up how long a widget paints.
class PaintingTime : public QObject
{
public:
    explicit PaintingTime(QWidget &widget) { widget.installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint || m_isPainting)
            return false;
        m_isPainting = true;
        QElapsedTimer timer;
        timer.start();
        QCoreApplication::sendEvent(watched, event);
        nanoseconds += timer.nsecsElapsed();
        ++count;
        m_isPainting = false;
        return true;
    }

    qint64 nanoseconds = 0;
    int count = 0;

private:
    bool m_isPainting = false;
};

} // namespace

TEST_F(OutputPaneTest, LeavesHalfOfTheTimeToOutputThatTakesLongToPaint)
{
    pane.resize(700, 490); // longer than a frame, and under a sanitizer less than half of the longest
    // Control characters, letters that no usual font has, and right-to-left words.
    const QString rare = u"\u0001\u07ca\ufffd\u0634\u0633\u0002\u1401\u05d0\u0003"_s;
    run.append(rare.repeated(2000), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    PaintingTime painting(*pane.viewport());
    pane.viewport()->repaint();
    if (painting.nanoseconds < 16'000'000)
        GTEST_SKIP() << "nothing takes longer than a frame to paint here";

    painting.nanoseconds = painting.count = 0;
    QElapsedTimer timer;
    timer.start();
    while (painting.count < 10) {
        run.append(rare, OutputKind::out);
        QApplication::processEvents();
    }
    EXPECT_LE(painting.nanoseconds, timer.nsecsElapsed() * 2 / 3);
}
