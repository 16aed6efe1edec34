#pragma once

// What all tests of a pane with its bar share.

#include "Find/FindBar.h"
#include "Find/FindablePane.h"
#include "Look/Colours.h"
#include "RunController/RunController.h"
#include "Screens/ByName.h"
#include "Support/Printing.h"
#include "Support/Waiting.h"

#include <QApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

/// An output pane with its bar in a window, and a field beside it.
class FindablePaneTest : public testing::Test
{
protected:
    FindablePaneTest()
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&beside);
        output = new OutputPane(run, run.transcript().text());
        findable = new FindablePane(output, run, &window);
        layout->addWidget(findable, 1);
        window.resize(760, 400);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        output->setFocus();
    }

    QLineEdit *field() { return ByName::find<QLineEdit>(window, QStringLiteral("Find in output")); }
    bool isOpen() { return field() != nullptr; }
    bool says(const QString &text)
    {
        return waitUntil([&] { return ByName::shows(window, text); });
    }
    void type(const QString &text)
    {
        findable->find();
        field()->setText(text);
    }
    bool hasSelected(const QString &text, TextView::Position at)
    {
        return waitUntil([&] { return output->selection().begin() == at && output->selectedText() == text; });
    }
    bool isInView(TextView::Position position)
    {
        const QRect place = output->characterRect(position);
        return !place.isEmpty() && output->viewport()->rect().contains(place);
    }
    /// Whether the character stands on the ground of matches.
    bool isMarked(TextView::Position position)
    {
        const QRect place = output->characterRect(position);
        const QImage image = output->viewport()->grab().toImage();
        return image.pixelColor(place.left() + 1, place.top() + 1) == Colours::found(output->palette());
    }
    void fill(int lines)
    {
        QString text;
        for (int line = 0; line < lines; ++line)
            text += QStringLiteral("line %1\n").arg(line);
        run.append(text, OutputKind::out);
        EXPECT_TRUE(waitUntil([this] { return output->verticalScrollBar()->maximum() > 0; }));
    }

    RunController run;
    QWidget window;
    QLineEdit beside;
    OutputPane *output = nullptr;
    FindablePane *findable = nullptr;
};
