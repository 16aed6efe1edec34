#include "Look/Picker.h"
#include "Screens/ByName.h"

using namespace Qt::StringLiterals;

namespace
{

/// One of two choices, as assistive technology sees it.
class PickerAccessibility : public testing::Test
{
protected:
    void SetUp() override
    {
#ifdef Q_OS_MACOS
        GTEST_SKIP() << "there it is what Qt makes of it";
#endif
        picker.addItems({u"ubuntu"_s, u"debian"_s});
    }

    QWidget window;
    Picker picker{u"Distro"_s, Picker::Label::invisible, &window};
};

} // namespace

TEST_F(PickerAccessibility, SaysItsChoiceAsItsText)
{
    picker.setCurrentIndex(1);
    EXPECT_EQ(ByName::nameOf(&picker), u"Distro"_s);
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&picker);
    EXPECT_EQ(accessible->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible->text(QAccessible::Value), u"debian"_s);
    QAccessibleTextInterface *text = accessible->textInterface();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->text(0, -1), u"debian"_s);
    EXPECT_EQ(text->text(1, 3), u"eb"_s);
    int start = -1;
    int end = -1;
    text->selection(0, &start, &end);
    EXPECT_EQ(std::pair(start, end), std::pair(0, 6));
    EXPECT_EQ(text->selectionCount(), 1);
    EXPECT_EQ(text->characterCount(), 6);
    EXPECT_EQ(text->cursorPosition(), 0);
    EXPECT_EQ(text->offsetAtPoint({}), -1);
    start = end = -1;
    EXPECT_EQ(text->attributes(0, &start, &end), QString());
    EXPECT_EQ(std::pair(start, end), std::pair(0, 6));
}

TEST_F(PickerAccessibility, IsOneChoiceThatIsOpenedAndNotWrittenInto)
{
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&picker);
    EXPECT_TRUE(accessible->state().expandable);
    EXPECT_TRUE(accessible->state().readOnly);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"ubuntu"_s);
    ASSERT_EQ(accessible->childCount(), 1);
    EXPECT_NE(accessible->child(0), nullptr);
    EXPECT_EQ(accessible->child(1), nullptr);
    EXPECT_EQ(accessible->indexOfChild(accessible), -1);
    EXPECT_EQ(accessible->indexOfChild(nullptr), -1);
    QAccessibleActionInterface *actions = accessible->actionInterface();
    EXPECT_EQ(actions->actionNames(),
              (QStringList{QAccessibleActionInterface::showMenuAction(), QAccessibleActionInterface::pressAction()}));
    window.show();
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_FALSE(accessible->state().expanded) << "no other action opens it";
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(accessible->state().expanded);
    actions->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_FALSE(accessible->state().expanded);
}

TEST(Picker, OpensAndClosesForAssistiveTechnology)
{
    QWidget window;
    Picker picker(u"Distro"_s, Picker::Label::invisible, &window);
    picker.addItems({u"ubuntu"_s, u"debian"_s});
    window.show();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&picker);
    EXPECT_FALSE(accessible->state().expanded);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(accessible->state().expanded);
    ASSERT_EQ(accessible->childCount(), 1);
    EXPECT_EQ(accessible->indexOfChild(accessible->child(0)), 0);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_FALSE(accessible->state().expanded);
}
