#include "Look/NestedLoops.h"

#include "Support/Waiting.h"

#include <QDialog>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <gtest/gtest.h>

TEST(NestedLoops, DeletesAWidgetOnceItsEventIsOver)
{
    inEventLoop([] {
        const QPointer<QWidget> widget = new QWidget;
        NestedLoops::deleteAfter(widget);
        EXPECT_NE(widget, nullptr);
        EXPECT_TRUE(waitUntil([&] { return widget == nullptr; }));
    });
}

TEST(NestedLoops, EndsTheLoopOfAQuestionBeforeItDeletesWhatAsksIt)
{
    inEventLoop([] {
        const QPointer<QWidget> widget = new QWidget;
        {
            QDialog question(widget);
            QTimer::singleShot(0, widget, [&] { NestedLoops::deleteAfter(widget); });
            EXPECT_EQ(question.exec(), QDialog::Rejected);
            EXPECT_NE(widget, nullptr) << "the question is its child, and still on the stack";
        }
        EXPECT_TRUE(waitUntil([&] { return widget == nullptr; }));
    });
}

TEST(NestedLoops, WaitsForALoopThatNoWindowBelowEnds)
{
    inEventLoop([] {
        const QPointer<QWidget> widget = new QWidget;
        QEventLoop another;
        QTimer::singleShot(0, widget, [&] { NestedLoops::deleteAfter(widget); });
        QTimer::singleShot(std::chrono::milliseconds(100), &another, &QEventLoop::quit);
        another.exec();
        EXPECT_NE(widget, nullptr);
        EXPECT_TRUE(waitUntil([&] { return widget == nullptr; }));
    });
}
