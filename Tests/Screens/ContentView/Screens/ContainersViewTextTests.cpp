#include "Screens/ContentView/Screens/ContainersViewTest.h"

#include "Support/ProcessorTimer.h"

TEST_F(ContainersViewTest, ShowsHostileTextsAsTheyAre)
{
    const QString name = u"<b>web</b>"_s;
    setContainers(lineOf(name, u"running"_s, QString(1000000, u'8')) + lineOf(u"\u202egnp"_s, u"exited"_s));
    show();
    const QSize size = window.content().size();
    ASSERT_EQ(list().count(), 2);
    EXPECT_EQ(rowTexts(0)[0], name);
    EXPECT_LT(rowTexts(0)[2].size(), 2000);
    EXPECT_EQ(rowTexts(1)[0], u"⟨U+202E⟩gnp"_s);
    write(u"fail"_s, QByteArray(2000000, 'e'));
    press(view(), u"Stop"_s, u"Stop "_s + name);
    ASSERT_TRUE(untilIdle());
    QTest::qWait(20);
    EXPECT_EQ(window.content().size(), size);
    EXPECT_LT(view().findChild<NoteText *>()->height(), 200);
    press(view(), u"Logs"_s, u"Logs "_s + name);
    ASSERT_TRUE(waitUntil([this] { return sheet() != nullptr; }));
    EXPECT_TRUE(shows(*sheet(), u"Logs: "_s + name));
}

TEST_F(ContainersViewTest, ShowsMarkupInEveryTextAsItIs)
{
    const QByteArray html = "<img src=x><b>b</b>&amp;";
    setContainers(QByteArray("{\"ID\":\"H\",\"Names\":\"H\",\"Image\":\"H\",\"State\":\"H\",\"Status\":\"H\","
                             "\"Ports\":\"H\"}\n")
                      .replace("H", html));
    show();
    ASSERT_EQ(list().count(), 1);
    const QString text = QString::fromUtf8(html);
    EXPECT_EQ(rowTexts(0), (QStringList{text, text + u" · "_s + text, text}));
    for (const PlainLabel *label : list().row(0)->findChildren<PlainLabel *>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
    write(u"fail"_s, html);
    press(view(), u"Start"_s, u"Start "_s + text);
    ASSERT_TRUE(untilIdle());
    EXPECT_TRUE(shows(view(), u"docker start failed: "_s + text));
}

TEST_F(ContainersViewTest, CallsAContainerWithoutANameByItsIdWhereItIsOnlyHeard)
{
    setContainers("{\"ID\":\"c0ffee\",\"Names\":\"\",\"State\":\"running\"}\n");
    show();
    ASSERT_EQ(list().count(), 1);
    EXPECT_EQ(list().row(0)->accessibleName(), u"c0ffee"_s);
    EXPECT_EQ(list().row(0)->buttons().at(1)->accessibleDescription(), u"Stop c0ffee"_s);
    EXPECT_EQ(rowTexts(0).first(), QString());
}

TEST_F(ContainersViewTest, StaysAsWideAsItIsForALineOfTenMegabytes)
{
    const QSize size = show().size();
    setContainers("{\"ID\":\"x\",\"Labels\":\"" + QByteArray(5000000, 'l') + "\",\"Names\":\"" +
                  QByteArray(5000000, 'n') + "\"}\n" + lineOf(u"web"_s, u"running"_s));
    ASSERT_TRUE(waitFor(window.containers.refresh()));
    ASSERT_EQ(list().count(), 2);
    ProcessorTimer timer;
    timer.start();
    view().grab();
    EXPECT_LT(timer.elapsed(), 2000); // far above what it takes, so that a sanitizer passes
    EXPECT_EQ(view().size(), size);
    EXPECT_LE(list().row(0)->buttons().last()->geometry().right(), list().viewport()->width());
}

TEST_F(ContainersViewTest, SetsItsTextsInTheTypeOfTheirRank)
{
    show();
    const QList<PlainLabel *> lines = list().row(0)->findChildren<PlainLabel *>();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0]->font(), Typography::headline());
    EXPECT_EQ(lines[1]->font(), Typography::caption());
    EXPECT_EQ(lines[2]->font(), Typography::smallestCaption());
    for (const int secondary : {1, 2})
        EXPECT_EQ(lines[secondary]->palette().color(QPalette::WindowText), Colours::secondary(view().palette()));
    EXPECT_EQ(find<PlainLabel>(view(), u"Containers (docker ps -a)"_s)->font(), Typography::headline());
    image().setText(u"-"_s);
    press(view(), u"Run"_s);
    auto *message = find<NoteText>(view(), u"Enter a valid image name, for example nginx:latest."_s);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->font(), Typography::callout());
}
