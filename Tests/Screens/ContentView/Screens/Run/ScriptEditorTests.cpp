#include "ContentView/Screens/Run/ScriptEditor.h"
#include "Look/Colours.h"
#include "Look/Typography.h"
#include "RunController/RunController.h"
#include "Support/ProcessorTimer.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QUrl>
#include <QVBoxLayout>

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

TEST(ScriptEditor, IsAFieldOfThirteenPointsFromSixLinesToTen)
{
    RunController run;
    ScriptEditor editor(run);
    editor.resize(400, 150);
    editor.show();
    EXPECT_EQ(editor.font(), Typography::monospaced(13));
    EXPECT_EQ(editor.document()->defaultFont(), Typography::monospaced(13));
    EXPECT_EQ(editor.minimumHeight(), 120);
    EXPECT_EQ(editor.maximumHeight(), 200);
    EXPECT_EQ(editor.sizeHint().height(), 120);
    EXPECT_EQ(editor.viewport()->geometry(), editor.rect().adjusted(3 + 2, 3 + 1, -3 - 2, -3 - 1));
    EXPECT_EQ(editor.tabStopDistance(), 4 * editor.fontMetrics().horizontalAdvance(u' '));
    EXPECT_EQ(editor.wordWrapMode(), QTextOption::WrapAnywhere);
    EXPECT_FALSE(editor.document()->isUndoAvailable());
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

TEST(ScriptEditor, TypesATabAndIsLeftByControlTabAndShiftTab)
{
    RunController run;
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *before = new QPushButton(u"before"_s);
    auto *editor = new ScriptEditor(run);
    auto *after = new QPushButton(u"after"_s);
    for (QWidget *widget : std::initializer_list<QWidget *>{before, editor, after})
        layout->addWidget(widget);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    editor->setFocus();
    QTest::keyClicks(editor, u"if"_s);
    QTest::keyClick(editor, Qt::Key_Tab);
    EXPECT_EQ(run.script(), u"if\t"_s);
    EXPECT_EQ(window.focusWidget(), editor);
    editor->undo();
    EXPECT_EQ(run.script(), u"if"_s);
    for (const Qt::KeyboardModifier control : {Qt::ControlModifier, Qt::MetaModifier}) {
        QTest::keyClick(editor, Qt::Key_Tab, control);
        EXPECT_EQ(window.focusWidget(), after);
        editor->setFocus();
        QTest::keyClick(editor, Qt::Key_Backtab, control | Qt::ShiftModifier);
        EXPECT_EQ(window.focusWidget(), before);
        editor->setFocus();
        QTest::keyClick(editor, Qt::Key_Tab, control | Qt::ShiftModifier);
        EXPECT_EQ(window.focusWidget(), before) << "where Shift-Tab is no key of its own";
        editor->setFocus();
    }
    QTest::keyClick(editor, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window.focusWidget(), before);
    EXPECT_EQ(run.script(), u"if"_s);
}

TEST(ScriptEditor, TypesThePathOfADroppedFile)
{
    RunController run;
    OpenEditor editor(run);
    QMimeData one;
    one.setUrls({QUrl::fromLocalFile(u"/Users/ann/notes.txt"_s)});
    EXPECT_TRUE(editor.canInsertFromMimeData(&one));
    editor.insertFromMimeData(&one);
    EXPECT_EQ(run.script(), u"/Users/ann/notes.txt"_s);
    editor.clear();
    QMimeData several;
    several.setUrls({QUrl::fromLocalFile(u"/tmp/a b"_s), QUrl::fromLocalFile(u"/tmp/it's"_s)});
    editor.insertFromMimeData(&several);
    EXPECT_EQ(run.script(), u"'/tmp/a b' '/tmp/it'\\''s'"_s) << "each one word of a shell";
    editor.clear();
    QMimeData link;
    link.setUrls({QUrl(u"https://example.org/"_s)});
    editor.insertFromMimeData(&link);
    EXPECT_EQ(run.script(), u"https://example.org/"_s);
}

TEST(ScriptEditor, KeepsItsOutlineWhileFocusedAndShowsTheFocusWithin)
{
    RunController run;
    ScriptEditor editor(run);
    QPalette palette = editor.palette();
    palette.setColor(QPalette::Highlight, Qt::magenta);
    editor.setPalette(palette);
    editor.resize(400, 120);
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&editor));
    const auto pixel = [&editor](int x) { return editor.grab().toImage().pixelColor(x, 60).rgb(); };
    const QRgb outline = Colours::line(palette, 0.4F).rgb();
    const QRgb ring = QColor(Qt::magenta).rgb();
    for (const bool isFocused : {false, true}) {
        isFocused ? editor.setFocus() : editor.clearFocus();
        EXPECT_EQ(pixel(0), outline);
        EXPECT_EQ(pixel(399), outline);
        EXPECT_EQ(pixel(1) == ring, isFocused);
        EXPECT_EQ(pixel(2) == ring, isFocused);
        EXPECT_NE(pixel(3), ring);
    }
}

TEST(ScriptEditor, IsAtLeast120AndAtMost200High)
{
    RunController run;
    ScriptEditor editor(run);
    EXPECT_EQ(editor.minimumHeight(), 120);
    EXPECT_EQ(editor.maximumHeight(), 200);
}

TEST(ScriptEditor, WritesInMonospacedTypeOfSize13WithTabsOfFourBlanks)
{
    RunController run;
    const ScriptEditor editor(run);
    EXPECT_EQ(QFontInfo(editor.font()).pixelSize(), 13);
    EXPECT_TRUE(QFontInfo(editor.font()).fixedPitch());
    EXPECT_DOUBLE_EQ(editor.tabStopDistance(), 4 * editor.fontMetrics().horizontalAdvance(u' '));
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
    ProcessorTimer timer;
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

TEST(ScriptEditor, ShowsTheBeginningOfWhateverTookTheScriptsPlace)
{
    RunController run;
    ScriptEditor editor(run);
    editor.resize(400, 120);
    editor.show();
    const auto isAtBeginning = [&editor] {
        return editor.textCursor().position() == 0 && editor.verticalScrollBar()->value() == 0;
    };
    for (const bool canBeUndone : {false, true}) {
        const QString script = u"a line\n"_s.repeated(canBeUndone ? 200 : 100);
        canBeUndone ? editor.replaceText(script) : run.setScript(script);
        EXPECT_EQ(run.script(), script);
        EXPECT_GT(editor.verticalScrollBar()->maximum(), 0);
        EXPECT_TRUE(isAtBeginning());
        editor.moveCursor(QTextCursor::End);
        EXPECT_FALSE(isAtBeginning());
    }
}

TEST(ScriptEditor, TakesWhatAnInputMethodCommits)
{
    RunController run;
    ScriptEditor editor(run);
    QInputMethodEvent typed;
    typed.setCommitString(u"é"_s);
    QCoreApplication::sendEvent(&editor, &typed);
    EXPECT_EQ(run.script(), u"é"_s);
}
