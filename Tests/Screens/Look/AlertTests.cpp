#include "Look/Alert.h"
#include "Look/Typography.h"
#include "Screens/ByName.h"
#include "Support/Waiting.h"

#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <memory>

using namespace Qt::StringLiterals;

namespace
{

const auto message = u"The machine and everything inside it will be removed permanently."_s;

QMessageBox *openAlert(QWidget &window, const QString &title)
{
    window.resize(820, 640);
    window.show();
    return Alert::open(&window, title, message, u"Delete"_s, u"Cancel"_s, [] {});
}

} // namespace

TEST(Alert, BeginsItsTextsAtItsMargin)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system lays out its own alerts";
#endif
    QWidget window;
    const QMessageBox *alert = openAlert(window, u"Delete box?"_s);
    const int margin = alert->layout()->contentsMargins().left();
    for (const QString &text : {u"Delete box?"_s, message}) {
        const auto *label = ByName::find<QLabel>(*alert, text);
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->mapTo(alert, label->contentsRect().topLeft()).x(), margin);
        EXPECT_EQ(label->indent(), 0);
    }
}

TEST(Alert, SetsItsTitleAsAHeadlineAndItsMessageAsRunningTextInLinesOfReadableLength)
{
    QWidget window;
    const QMessageBox *alert = openAlert(window, u"Delete box?"_s);
    const auto *title = ByName::find<QLabel>(*alert, u"Delete box?"_s);
    const auto *text = ByName::find<QLabel>(*alert, message);
    ASSERT_TRUE(title != nullptr && text != nullptr);
    EXPECT_EQ(title->font(), Typography::headline());
    EXPECT_EQ(text->font(), Typography::body());
    EXPECT_GE(text->width(), 420);
    EXPECT_EQ(text->minimumWidth(), 420);
    EXPECT_EQ(title->minimumWidth(), 420);
    EXPECT_EQ(alert->textFormat(), Qt::PlainText);
}

TEST(Alert, GivesTheFocusBackWhereItWas)
{
    QWidget window;
    QPushButton before(u"before"_s, &window);
    QPushButton other(u"other"_s, &window);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    QMessageBox *alert = Alert::tell(&window, u"So it is."_s, {});
    ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
    before.setFocus();
    ASSERT_EQ(alert->buttons().size(), 1);
    EXPECT_EQ(alert->buttons().first()->text(), u"OK"_s);
    QTest::mouseClick(alert->buttons().first(), Qt::LeftButton);
    EXPECT_EQ(window.focusWidget(), &other);
}

TEST(Alert, ShowsALongTitleWholeInSeveralLines)
{
#ifdef Q_OS_MACOS
    GTEST_SKIP() << "the system lays out its own alerts";
#endif
    QWidget window;
    const QString title = u"Delete "_s + u"a-name-that-goes-on-"_s.repeated(10) + u'?';
    const QMessageBox *alert = openAlert(window, title);
    EXPECT_LT(alert->width(), 700);
    EXPECT_LT(alert->height(), 400);
    const auto *label = ByName::find<QLabel>(*alert, title);
    ASSERT_NE(label, nullptr);
    EXPECT_TRUE(label->wordWrap());
    EXPECT_GE(label->height(), label->heightForWidth(label->width()));
    // On a wide screen the box breaks a title only when it asks for more than half a thousand points.
    EXPECT_EQ(label->minimumWidth(), 0);
}

TEST(Alert, AcceptsWithReturnUnlessThatDestroysOrEnds)
{
    QWidget window;
    window.show();
    for (const Alert::Kind kind : {Alert::Kind::ordinary, Alert::Kind::destructive}) {
        int accepted = 0;
        QMessageBox *alert =
            Alert::open(&window, u"Go on?"_s, {}, u"Go on"_s, u"Cancel"_s, [&accepted] { ++accepted; }, kind);
        ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
        QTest::keyClick(alert, Qt::Key_Return);
        EXPECT_FALSE(alert->isVisible());
        EXPECT_EQ(accepted, kind == Alert::Kind::ordinary ? 1 : 0);
    }
}

TEST(Alert, CancelsWithEscapeWhateverItAsks)
{
    QWidget window;
    window.show();
    for (const Alert::Kind kind : {Alert::Kind::ordinary, Alert::Kind::destructive}) {
        int accepted = 0;
        QMessageBox *alert =
            Alert::open(&window, u"Go on?"_s, {}, u"Go on"_s, u"Cancel"_s, [&accepted] { ++accepted; }, kind);
        ASSERT_TRUE(QTest::qWaitForWindowActive(alert));
        QTest::keyClick(alert, Qt::Key_Escape);
        EXPECT_FALSE(alert->isVisible());
        EXPECT_EQ(accepted, 0);
    }
    QMessageBox *notice = Alert::tell(&window, u"So it is."_s, {});
    ASSERT_TRUE(QTest::qWaitForWindowActive(notice));
    QTest::keyClick(notice, Qt::Key_Escape);
    EXPECT_FALSE(notice->isVisible());
}

TEST(Alert, IsNeverHandedToTheSystemToDraw)
{
    QWidget window;
    // The toolkit does so with objects of this very class alone, from a version on that need not be the one here.
    EXPECT_STRNE(openAlert(window, u"Delete box?"_s)->metaObject()->className(),
                 QMessageBox::staticMetaObject.className());
}

TEST(Alert, StandsOverItsWindowOrByItselfWhereThatIsHiddenUntilItIsAnswered)
{
    QWidget window;
    QMessageBox *alone = Alert::tell(&window, u"So it is."_s, {});
    EXPECT_EQ(alone->parentWidget(), nullptr);
    EXPECT_TRUE(alone->isVisible());
    window.show();
    const QPointer<QMessageBox> over = Alert::tell(&window, u"So it is."_s, u"And why."_s);
    EXPECT_EQ(over->parentWidget(), &window);
    EXPECT_EQ(over->windowModality(), Qt::WindowModal);
    EXPECT_EQ(over->text(), u"So it is."_s);
    EXPECT_EQ(over->informativeText(), u"And why."_s);
    const QPointer<QMessageBox> first = alone;
    for (const QPointer<QMessageBox> &each : {first, over}) {
        each->buttons().first()->click();
        EXPECT_TRUE(waitUntil([&each] { return each == nullptr; })) << "an answer ends it";
    }
}

TEST(Alert, IsGoneWithItsParentAlsoWhereItStandsByItself)
{
    for (const bool isShown : {true, false}) {
        auto window = std::make_unique<QWidget>();
        window->setVisible(isShown);
        auto *parent = new QWidget(window.get());
        const QPointer<QMessageBox> alert = Alert::tell(parent, u"So it is."_s, {});
        EXPECT_TRUE(alert->isVisible());
        delete parent;
        EXPECT_EQ(alert, nullptr) << "what an answer reads may be gone";
    }
}
