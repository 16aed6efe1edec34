#pragma once

// What all tests of the output pane share: the pane on screen over a controller of its own.

#include "OutputPane/OutputPane.h"

#include "RunController/RunController.h"
#include "Support/Printing.h"
#include "Support/Waiting.h"

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>

/// The pane on screen over a controller of its own.
class OutputPaneTest : public testing::Test
{
protected:
    OutputPaneTest()
    {
        pane.resize(640, 300);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&pane));
        QApplication::setActiveWindow(&pane);
        pane.setFocus();
    }

    ~OutputPaneTest() override { QApplication::setPalette(palette); }

    bool isAtEnd() { return pane.verticalScrollBar()->value() == pane.verticalScrollBar()->maximum(); }

    /// The last character is in view once the pane has caught up with the transcript.
    bool showsEnd()
    {
        return waitUntil([this] {
            const QRect last = pane.characterRect(run.transcript().end() - 1);
            return isAtEnd() && !last.isEmpty() && pane.viewport()->rect().contains(last.center());
        });
    }

    QAccessibleTextInterface *accessibleText()
    {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(&pane);
        return interface != nullptr ? interface->textInterface() : nullptr;
    }

    QString wholeAccessibleText()
    {
        QAccessibleTextInterface *const text = accessibleText();
        return text != nullptr ? text->text(0, text->characterCount()) : QString();
    }

    /// Whether a pixel of about this colour is drawn in the rectangle.
    bool draws(const QColor &colour, const QRect &rectangle)
    {
        const QImage image = pane.viewport()->grab(rectangle).toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                const int distance = std::abs(pixel.red() - colour.red()) + std::abs(pixel.green() - colour.green()) +
                                     std::abs(pixel.blue() - colour.blue());
                if (distance < 24)
                    return true;
            }
        }
        return false;
    }

    /// Lines of one kind, far more than fit, with the end in view.
    void fill()
    {
        for (int line = 0; line < 500; ++line)
            run.append(QStringLiteral("line %1\n").arg(line), OutputKind::out);
        EXPECT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->maximum() > 0; }));
        EXPECT_TRUE(showsEnd());
    }

    /// A point of the viewport where a click puts the caret before that character.
    QPoint before(TextStore::Position position)
    {
        const QRect rect = pane.characterRect(position);
        EXPECT_FALSE(rect.isEmpty()) << "not in view: " << position;
        return {rect.left() + 1, rect.center().y()};
    }

    void press(QPoint point, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(pane.viewport(), Qt::LeftButton, modifiers, point);
    }

    /// Moves the mouse there with its left button held.
    void drag(QPoint point) { send(QEvent::MouseMove, point, Qt::NoButton); }

    void release(QPoint point = {}) { QTest::mouseRelease(pane.viewport(), Qt::LeftButton, {}, point); }

    void send(QEvent::Type type, QPoint point, Qt::MouseButton button)
    {
        QMouseEvent event(type, point, pane.viewport()->mapToGlobal(point), button, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(pane.viewport(), &event);
    }

    const QPalette palette = QApplication::palette();
    RunController run;
    OutputPane pane{run, run.transcript().text()};
};
