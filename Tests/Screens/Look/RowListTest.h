#pragma once

// A list of rows between two text fields, in a window.

#include "Look/PlainLabel.h"
#include "Look/Rows/RowList.h"
#include "Screens/PaintWatch.h"
#include "Support/Waiting.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

/// Not the places of the buttons, so that nobody takes one for the other.
enum ThingAction { startThing = 30, stopThing = 10, deleteThing = 20 };

inline RowContent contentOf(const QString &id, bool isRunning = false)
{
    RowContent row;
    row.id = id;
    row.name = id;
    row.dot = RowContent::Dot{isRunning ? StatusDot::Colour::green : StatusDot::Colour::grey,
                              isRunning ? u"running"_s : u"not running"_s};
    row.lines = {{id, RowContent::TextStyle::headline}, {u"caption of "_s + id, RowContent::TextStyle::caption}};
    row.buttons = {{startThing, u"Start"_s, !isRunning}, {stopThing, u"Stop"_s, isRunning}, {deleteThing, u"Delete"_s}};
    return row;
}

inline QList<RowContent> rowsNumbered(int begin, int end)
{
    QList<RowContent> rows;
    for (int number = begin; number < end; ++number)
        rows.append(contentOf(u"row%1"_s.arg(number)));
    return rows;
}

class RowListTest : public testing::Test
{
protected:
    RowListTest()
    {
        // Nothing is painted but for the list's sake.
        QApplication::setCursorFlashTime(0);
        window.resize(700, 400);
        auto *layout = new QVBoxLayout(&window);
        before = new QLineEdit(&window);
        list = new RowList(u"Things"_s, &window);
        after = new QLineEdit(&window);
        for (QWidget *widget :
             {static_cast<QWidget *>(before), static_cast<QWidget *>(list), static_cast<QWidget *>(after)})
            layout->addWidget(widget);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void settle() { waitUntilPainted(window); }

    QPushButton *button(int index, int number) { return list->row(index)->buttons().at(number); }

    QString focusedText() const
    {
        const auto *focused = qobject_cast<QPushButton *>(QApplication::focusWidget());
        return focused != nullptr ? focused->accessibleDescription() : QString();
    }

    /// One row, whose "Delete" is disabled while it has the focus.
    void disableTheFocusedButton()
    {
        list->setRows({contentOf(u"box"_s)});
        button(0, 2)->setFocus();
        RowContent row = contentOf(u"box"_s);
        row.buttons[2].isEnabled = false;
        list->setRows({row});
    }

    bool isInView(int index)
    {
        const RowWidget *row = list->row(index);
        return row->visibleRegion().boundingRect().height() == row->height();
    }

    int centreOnScreen(int index) { return list->row(index)->mapTo(&window, list->row(index)->rect().center()).y(); }

    QWidget window;
    QLineEdit *before;
    RowList *list;
    QLineEdit *after;
};
