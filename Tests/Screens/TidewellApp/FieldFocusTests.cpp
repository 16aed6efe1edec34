#include "TidewellApp/FieldFocus.h"

#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// Notes for which reasons it is told that it has got the focus.
class Field : public QLineEdit
{
public:
    using QLineEdit::QLineEdit;

    QList<Qt::FocusReason> reasons;

protected:
    void focusInEvent(QFocusEvent *event) override
    {
        reasons.append(event->reason());
        QLineEdit::focusInEvent(event);
    }
};

class FieldFocusTest : public testing::Test
{
protected:
    FieldFocusTest()
    {
        auto *layout = new QVBoxLayout(&window);
        for (QWidget *widget : std::initializer_list<QWidget *>{&button, &field, &another})
            layout->addWidget(widget);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        button.setFocus();
        isSomebodyListening = true;
    }

    void SetUp() override
    {
#ifdef Q_OS_MACOS
        GTEST_SKIP() << "on macOS the screen reader asks for the focus itself";
#endif
    }

    /// Lets what was put off happen.
    static void goOn() { QCoreApplication::sendPostedEvents(); }

    static inline bool isSomebodyListening = true;
    const FieldFocus focus{[] { return isSomebodyListening; }};
    QWidget window;
    QPushButton button{u"button"_s};
    Field field{u"git curl"_s};
    Field another{u"another"_s};
};

} // namespace

TEST_F(FieldFocusTest, ComesBeforeTheFieldSelectsItsText)
{
    for (const Qt::FocusReason reason : {Qt::TabFocusReason, Qt::BacktabFocusReason, Qt::ShortcutFocusReason}) {
        field.reasons.clear();
        field.setFocus(reason);
        EXPECT_TRUE(field.hasFocus());
        EXPECT_EQ(field.selectedText(), QString()) << "not yet";
        EXPECT_EQ(field.reasons, QList<Qt::FocusReason>{Qt::OtherFocusReason}) << "once, for what selects nothing";
        goOn();
        EXPECT_EQ(field.selectedText(), u"git curl"_s);
        button.setFocus();
    }
}

TEST_F(FieldFocusTest, SelectsNothingWhereQtWouldNot)
{
    for (const Qt::FocusReason reason : {Qt::MouseFocusReason, Qt::OtherFocusReason, Qt::ActiveWindowFocusReason}) {
        field.setFocus(reason);
        goOn();
        EXPECT_EQ(field.selectedText(), QString()) << reason;
        EXPECT_EQ(field.reasons.takeLast(), reason);
        button.setFocus();
    }
}

TEST_F(FieldFocusTest, LeavesASelectionThatTheFieldHas)
{
    field.setSelection(0, 3);
    field.setFocus(Qt::TabFocusReason);
    goOn();
    EXPECT_EQ(field.selectedText(), u"git"_s);
}

TEST_F(FieldFocusTest, SelectsAtOnceWhenNobodyListens)
{
    isSomebodyListening = false;
    field.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(field.selectedText(), u"git curl"_s);
    EXPECT_EQ(field.reasons, QList<Qt::FocusReason>{Qt::TabFocusReason});
}

TEST_F(FieldFocusTest, ReplacesTheTextByWhatIsTypedAtOnce)
{
    field.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&field, Qt::Key_X);
    EXPECT_EQ(field.text(), u"x"_s);
    goOn();
    QTest::keyClick(&field, Qt::Key_Y);
    EXPECT_EQ(field.text(), u"xy"_s) << "it is selected once";
}

TEST_F(FieldFocusTest, ReplacesTheTextByWhatAnInputMethodCommitsAtOnce)
{
    field.setFocus(Qt::TabFocusReason);
    QInputMethodEvent typed;
    typed.setCommitString(u"é"_s);
    QCoreApplication::sendEvent(&field, &typed);
    EXPECT_EQ(field.text(), u"é"_s);
}

TEST_F(FieldFocusTest, LeavesTheTextAsTheMouseSelectsItAtOnce)
{
    field.setFocus(Qt::TabFocusReason);
    QTest::mousePress(&field, Qt::LeftButton, {}, QPoint(2, field.height() / 2));
    QTest::mouseRelease(&field, Qt::LeftButton, {}, QPoint(2, field.height() / 2));
    goOn();
    EXPECT_EQ(field.selectedText(), QString());
}

TEST_F(FieldFocusTest, WaitsThroughWhatIsNoInputOfTheField)
{
    field.setFocus(Qt::TabFocusReason);
    QEvent leaving(QEvent::Leave);
    QCoreApplication::sendEvent(&field, &leaving);
    EXPECT_EQ(field.selectedText(), QString());
    QTest::keyClick(&another, Qt::Key_X);
    EXPECT_EQ(field.selectedText(), QString());
    goOn();
    EXPECT_EQ(field.selectedText(), u"git curl"_s);
}

TEST_F(FieldFocusTest, SelectsNothingInAFieldThatWasLeftAtOnce)
{
    field.setFocus(Qt::TabFocusReason);
    button.setFocus(Qt::BacktabFocusReason);
    goOn();
    EXPECT_EQ(field.selectedText(), QString());
    field.setFocus(Qt::TabFocusReason);
    another.setFocus(Qt::TabFocusReason);
    goOn();
    EXPECT_EQ(field.selectedText(), QString());
    EXPECT_EQ(another.selectedText(), u"another"_s);
}
