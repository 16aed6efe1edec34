#include "ContentView/Screens/ScriptEditor.h"
#include "RunController/RunController.h"

#include <QElapsedTimer>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

class OpenEditor : public ScriptEditor
{
public:
    using ScriptEditor::canInsertFromMimeData;
    using ScriptEditor::insertFromMimeData;
    using ScriptEditor::ScriptEditor;
};

} // namespace

TEST(ScriptEditor, ShowsTheControllersScriptAndGivesItEveryChange)
{
    RunController run;
    run.setScript(u"first\n\nthird"_s);
    ScriptEditor editor(run);
    EXPECT_EQ(editor.toPlainText(), u"first\n\nthird"_s);
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, u"!"_s);
    QTest::keyClick(&editor, Qt::Key_Return);
    QTest::keyClick(&editor, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(run.script(), u"first\n\nthird!\n\n"_s);
    run.setScript(u"loaded"_s);
    EXPECT_EQ(editor.toPlainText(), u"loaded"_s);
}

TEST(ScriptEditor, ChangesNothingOfAScriptThatWasOnlyShown)
{
    RunController run;
    ScriptEditor editor(run);
    const QString script = u"a\r\nb\u00a0c\td\n"_s;
    run.setScript(script);
    EXPECT_EQ(run.script(), script);
}

TEST(ScriptEditor, KeepsNoBreakSpacesAndTabs)
{
    RunController run;
    ScriptEditor editor(run);
    editor.insertPlainText(u"x\u00a0\ty"_s);
    EXPECT_EQ(run.script(), u"x\u00a0\ty"_s);
}

TEST(ScriptEditor, TakesPlainTextOnly)
{
    RunController run;
    OpenEditor editor(run);
    QMimeData both;
    both.setHtml(u"<b>rich</b>"_s);
    both.setText(u"plain "_s);
    editor.insertFromMimeData(&both);
    QMimeData htmlAlone;
    htmlAlone.setHtml(u"<p>one</p><p><i>two</i></p>"_s);
    EXPECT_TRUE(editor.canInsertFromMimeData(&htmlAlone));
    editor.insertFromMimeData(&htmlAlone);
    EXPECT_EQ(run.script(), u"plain one\ntwo"_s);
}

TEST(ScriptEditor, LetsTheTabKeyMoveOn)
{
    RunController run;
    ScriptEditor editor(run);
    EXPECT_TRUE(editor.tabChangesFocus());
}

TEST(ScriptEditor, IsAtLeast120AndAtMost200High)
{
    RunController run;
    ScriptEditor editor(run);
    EXPECT_EQ(editor.minimumHeight(), 120);
    EXPECT_EQ(editor.maximumHeight(), 200);
    EXPECT_EQ(QFontInfo(editor.font()).pixelSize(), 13);
}

TEST(ScriptEditor, StaysQuickWithFiveMegabytes)
{
    RunController run;
    QString script;
    while (script.size() < 5'000'000)
        script += u"echo a line of the usual length, as people write them\n"_s;
    run.setScript(script);
    ScriptEditor editor(run);
    editor.resize(800, 200);
    editor.show();
    QElapsedTimer timer;
    timer.start();
    for (const QChar key : u"quick"_s)
        QTest::keyClick(&editor, key.toLatin1());
    EXPECT_EQ(run.script(), u"quick"_s + script);
    // Generous, because sanitizers and other programs slow it down; a keystroke takes about 15 ms.
    EXPECT_LT(timer.elapsed(), 5 * 400);
}

TEST(ScriptEditor, KeepsItsScrollBarWithinTheRoundedFrame)
{
    RunController run;
    run.setScript(u"line\n"_s.repeated(50));
    ScriptEditor editor(run);
    editor.resize(400, 120);
    editor.show();
    const QScrollBar *bar = editor.verticalScrollBar();
    ASSERT_TRUE(bar->isVisible());
    EXPECT_LT(bar->mapTo(&editor, bar->rect().bottomRight()).x(), editor.rect().right());
    EXPECT_LT(bar->mapTo(&editor, bar->rect().bottomRight()).y(), editor.rect().bottom());
}
