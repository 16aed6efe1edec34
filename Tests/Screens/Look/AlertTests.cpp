#include "Look/Alert.h"
#include "Screens/ByName.h"

#include <QLabel>
#include <QLayout>
#include <QMessageBox>

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
        EXPECT_NEAR(label->mapTo(alert, label->contentsRect().topLeft()).x(), margin, 2);
        EXPECT_EQ(label->indent(), 0);
    }
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
