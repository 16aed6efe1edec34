#include "ContentView/ButtonAction.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

TEST(ButtonAction, IsEnabledExactlyWhileItsButtonCanBePressed)
{
    const QList<QKeySequence> shortcuts{Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter};
    ButtonAction action(u"&Do"_s, shortcuts, nullptr);
    EXPECT_FALSE(action.isEnabled()) << "it has none yet";
    EXPECT_EQ(action.text(), u"&Do"_s);
    EXPECT_EQ(action.shortcuts(), shortcuts);
    QWidget window;
    QPushButton button(&window);
    action.setButton(&button);
    EXPECT_FALSE(action.isEnabled()) << "the button is not shown yet";
    window.show();
    EXPECT_TRUE(action.isEnabled());
    for (const bool isPossible : {false, true}) {
        button.setEnabled(isPossible);
        EXPECT_EQ(action.isEnabled(), isPossible);
    }
    for (const bool isShown : {false, true}) {
        button.setVisible(isShown);
        EXPECT_EQ(action.isEnabled(), isShown);
    }
    window.hide();
    EXPECT_FALSE(action.isEnabled());
}

TEST(ButtonAction, PressesTheButtonThatItWasGivenLast)
{
    ButtonAction action(u"&Do"_s, {}, nullptr);
    QWidget window;
    auto first = std::make_unique<QPushButton>(&window);
    auto second = std::make_unique<QPushButton>(&window);
    action.setButton(first.get());
    window.show();
    action.setButton(second.get());
    EXPECT_TRUE(action.isEnabled()) << "that is there already";
    const QSignalSpy pressedFirst(first.get(), &QPushButton::clicked);
    const QSignalSpy pressedSecond(second.get(), &QPushButton::clicked);
    first->setEnabled(false);
    EXPECT_TRUE(action.isEnabled());
    action.trigger();
    EXPECT_EQ(pressedFirst.count(), 0);
    EXPECT_EQ(pressedSecond.count(), 1);
    first.reset();
    EXPECT_TRUE(action.isEnabled());
    second.reset();
    EXPECT_FALSE(action.isEnabled());
    action.trigger();
}

TEST(ButtonAction, IsNotTriggeredAgainByKeysThatAreHeld)
{
    EXPECT_FALSE(ButtonAction(u"&Do"_s, {Qt::CTRL | Qt::Key_Return}, nullptr).autoRepeat());
}
