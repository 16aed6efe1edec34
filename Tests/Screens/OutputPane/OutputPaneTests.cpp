#include "OutputPaneTest.h"

#include "Look/Colours.h"
#include "Look/Typography.h"
#include "OutputPane/OutputPanePainter.h"
#include "Screens/PaintWatch.h"
#include "Support/ProcessorTimer.h"
#include "Support/Seed.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QFontMetricsF>

#include <array>
#include <limits>
#include <random>

using namespace Qt::StringLiterals;

namespace
{

QPalette darkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    return dark;
}

} // namespace

TEST_F(OutputPaneTest, ShowsThePlaceholderUntilTheFirstPieceReplacesIt)
{
    const auto description = [this] {
        return QAccessible::queryAccessibleInterface(&pane)->text(QAccessible::Description);
    };
    EXPECT_EQ(description(), u"Output appears here."_s);
    const QRect line(0, 0, pane.viewport()->width(), 40);
    EXPECT_TRUE(draws(Colours::secondary(palette), line));
    run.append(u"first\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return wholeAccessibleText() == u"first\n"_s; }));
    EXPECT_NE(description(), u"Output appears here."_s);
    EXPECT_TRUE(waitUntil([&] { return draws(Colours::primary(palette), line); }));
    run.clearTranscript();
    EXPECT_EQ(description(), u"Output appears here."_s);
    EXPECT_EQ(wholeAccessibleText(), QString());
}

TEST_F(OutputPaneTest, IsNamedAndReachedByKeyboardAndAtLeast160High)
{
    EXPECT_EQ(pane.accessibleName(), u"Output"_s);
    EXPECT_NE(pane.focusPolicy() & Qt::TabFocus, 0);
    EXPECT_EQ(pane.minimumHeight(), 160);
}

TEST_F(OutputPaneTest, IsPaintedOnceAFrameHoweverOftenTextComes)
{
    run.append(u"first\n"_s, OutputKind::out);
    ASSERT_TRUE(showsEnd());
    const PaintWatch watch(*pane.viewport());
    QElapsedTimer time;
    time.start();
    while (watch.count() < 20 && time.elapsed() < 20'000) {
        run.append(u"more\n"_s, OutputKind::out);
        QCoreApplication::processEvents();
    }
    EXPECT_GE(watch.count(), 20);
    EXPECT_GE(time.elapsed(), 18 * 15) << "sixty times a second";
}

TEST_F(OutputPaneTest, CopiesASelectionAcrossSegmentsWithNothingAdded)
{
    run.append(u"one"_s, OutputKind::out);
    run.append(u"two\nthree"_s, OutputKind::err);
    run.append(u"four\n"_s, OutputKind::info);
    pane.selectAll();
    EXPECT_EQ(pane.selectedText(), u"onetwo\nthreefour\n"_s);
    pane.select(2, 5);
    QTest::keySequence(&pane, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), u"etw"_s);
}

TEST_F(OutputPaneTest, SelectsAllByItsShortcut)
{
    run.append(u"a\x1b[31mb\t\u202e\u4e2d\n"_s, OutputKind::out);
    QTest::keySequence(&pane, QKeySequence::SelectAll);
    QTest::keySequence(&pane, QKeySequence::Copy);
    // What is drawn as a symbol is copied as the character it is.
    EXPECT_EQ(QApplication::clipboard()->text(), u"a\x1b[31mb\t\u202e\u4e2d\n"_s);
}

TEST_F(OutputPaneTest, ShowsByNameWhatWouldNotBeSeenWhereItStandsAlone)
{
    const QStringList hidden{u"\u3164"_s, u"\u115f"_s, u"\u034f"_s};
    // As the first of its line: the last of them would else belong to the letter before it.
    for (const QString &character : hidden)
        run.append(character + u"|\n"_s, OutputKind::out);
    run.append(u"123456|\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    const TextStore::Position last = run.transcript().end() - 8;
    const int name = pane.characterRect(last + 6).left() - pane.characterRect(last).left();
    TextStore::Position position = run.transcript().begin();
    for (const QString &character : hidden) {
        const qsizetype size = character.toUtf8().size();
        const QRect rect = pane.characterRect(position);
        EXPECT_NEAR(rect.width(), name, 1) << "six letters: U+, and four digits";
        EXPECT_NEAR(pane.characterRect(position + size).left(), rect.left() + name, 1);
        EXPECT_TRUE(draws(OutputPanePainter::colourOf(OutputKind::out, palette), rect));
        position += size + 2;
    }
    EXPECT_EQ(wholeAccessibleText(), hidden.join(u"|\n"_s) + u"|\n123456|\n"_s) << "but told as it is";
}

TEST_F(OutputPaneTest, BringsTheEndIntoViewAlsoWhenTheLastSegmentGrows)
{
    fill();
    ASSERT_EQ(run.transcript().segmentCount(), 1U);
    pane.verticalScrollBar()->setValue(0);
    EXPECT_FALSE(isAtEnd());
    run.append(u"more\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
}

TEST_F(OutputPaneTest, DrawsEveryKindInItsColourInLightAndDark)
{
    constexpr std::array kinds{OutputKind::out, OutputKind::err,  OutputKind::info,
                               OutputKind::ok,  OutputKind::fail, OutputKind::warn};
    for (const OutputKind kind : kinds)
        run.append(QString(20, QChar(0x2588)) + u'\n', kind);
    EXPECT_TRUE(showsEnd());
    for (const QPalette &shown : {palette, darkPalette()}) {
        QApplication::setPalette(shown);
        QApplication::processEvents();
        TextStore::Position position = run.transcript().begin();
        for (const OutputKind kind : kinds) {
            EXPECT_TRUE(draws(OutputPanePainter::colourOf(kind, shown), pane.characterRect(position)))
                << "kind " << static_cast<int>(kind);
            position = run.transcript().text().runAt(position).end;
        }
    }
}

TEST_F(OutputPaneTest, TellsTheAccessibilityBusWhatArrivedHoweverItWasCut)
{
    const QString text =
        u"plain \u00e9\u0301 \u4e2d\u6587 \U0001f469\u200d\U0001f52c \u0645\u0631\u062d\r\nnext\x07\n"_s.repeated(40);
    const QByteArray bytes = text.toUtf8();
    std::mt19937 random(seedOr(7));
    for (qsizetype from = 0; from < bytes.size();) {
        qsizetype size = std::min<qsizetype>(1 + static_cast<qsizetype>(random() % 37), bytes.size() - from);
        while (from + size < bytes.size() && (static_cast<unsigned char>(bytes[from + size]) & 0xC0U) == 0x80U)
            ++size;
        run.append(QUtf8StringView(bytes.constData() + from, size),
                   random() % 3 == 0 ? OutputKind::err : OutputKind::out);
        from += size;
    }
    EXPECT_TRUE(waitUntil([&] { return wholeAccessibleText() == text; }));
    EXPECT_EQ(accessibleText()->text(6, 9), text.mid(6, 3));
    pane.selectAll();
    EXPECT_EQ(pane.selectedText(), text);
    EXPECT_EQ(run.plainText(), text);
}

TEST_F(OutputPaneTest, IsAsQuickWithOneLineOf100MegabytesAsWithAMillionLines)
{
    const QByteArray piece(1024 * 1024, 'x');
    for (int count = 0; count < 100; ++count)
        run.append(QUtf8StringView(piece.constData(), piece.size()), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    ProcessorTimer watch;
    watch.start();
    pane.resize(pane.width() - 20, pane.height());
    pane.grab();
    pane.verticalScrollBar()->setValue(pane.verticalScrollBar()->maximum() / 2);
    pane.grab();
    EXPECT_LT(watch.elapsed(), 2000); // some milliseconds; far from what laying out the whole would take
    EXPECT_EQ(run.transcript().end() - run.transcript().begin(), 100 * piece.size());
}

TEST_F(OutputPaneTest, AnswersAccessibilityBeyondWhatItsOffsetsCount)
{
    constexpr int most = std::numeric_limits<int>::max();
    const QByteArray piece = (QByteArray(1023, 'x') + '\n').repeated(1024);
    for (int count = 0; count < 2050; ++count)
        run.append(QUtf8StringView(piece.constData(), piece.size()), OutputKind::out);
    run.append(u"the end"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QAccessibleTextInterface *const text = accessibleText();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->characterCount(), most);
    EXPECT_TRUE(waitUntil([&] { return text->cursorPosition() == most; }));
    int start = 0;
    int end = 0;
    EXPECT_EQ(text->textAtOffset(most, QAccessible::LineBoundary, &start, &end), u"the end"_s);
    EXPECT_EQ(end, most);
    EXPECT_EQ(text->text(1020, 1026), u"xxx\nxx"_s);
    EXPECT_EQ(text->text(most - 4, most - 1), u"xxx"_s);
    // All of it at once would not fit through the bus, nor beside the text in memory.
    EXPECT_EQ(text->text(0, most).size(), 127 * 1024 * 1024);
    pane.selectAll();
    text->selection(0, &start, &end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, most);
    pane.scrollTo(pane.text().begin());
    EXPECT_FALSE(pane.characterRect(pane.text().begin()).isEmpty());
}

TEST_F(OutputPaneTest, ShowsNeitherPlaceholderNorTextForAnEmptyPiece)
{
    run.append(QString(), OutputKind::info);
    EXPECT_TRUE(waitUntil([this] { return !draws(Colours::secondary(palette), pane.viewport()->rect()); }));
    EXPECT_NE(QAccessible::queryAccessibleInterface(&pane)->text(QAccessible::Description), u"Output appears here."_s);
}

TEST_F(OutputPaneTest, WritesInMonospacedTypeOfSize12EightPointsFromItsEdges)
{
    run.append(u"i\n"_s, OutputKind::out);
    EXPECT_TRUE(waitUntil([this] { return !pane.characterRect(0).isEmpty(); }));
    const QRect first = pane.characterRect(0);
    EXPECT_EQ(pane.viewport()->mapTo(&pane, first.topLeft()), QPoint(8, 8));
    const QFontMetricsF metrics(Typography::monospaced(12));
    EXPECT_EQ(first.width(), std::ceil(metrics.horizontalAdvance(u'i')));
    EXPECT_EQ(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'W'));
}

TEST_F(OutputPaneTest, StandsOnBlackAtSixPercentWithinRoundedCornersInLightAndDark)
{
    for (const QPalette &shown : {palette, darkPalette()}) {
        QApplication::setPalette(shown);
        QApplication::processEvents();
        const QImage image = pane.grab().toImage();
        const QColor window = shown.color(QPalette::Window);
        const QColor ground = image.pixelColor(4, image.height() / 2);
        EXPECT_NEAR(ground.red(), window.red() * 0.94, 1.5);
        EXPECT_NEAR(ground.blue(), window.blue() * 0.94, 1.5);
        EXPECT_EQ(image.pixelColor(0, 0), window) << "the corner is outside";
        EXPECT_EQ(image.pixelColor(image.width() - 1, image.height() - 1), window);
    }
}

TEST_F(OutputPaneTest, KeepsTheSelectionWhileOutputArrivesAndLosesOnlyWhatIsDropped)
{
    run.append(u"first\n"_s, OutputKind::err);
    run.append(u"second\n"_s, OutputKind::out);
    pane.selectAll();
    run.append(u"third\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    EXPECT_EQ(pane.selectedText(), u"first\nsecond\n"_s);
    run.append(QString(400'001, u'x'), OutputKind::info);
    EXPECT_TRUE(waitUntil([this] { return pane.selection().begin() == run.transcript().begin(); }));
    EXPECT_TRUE(run.plainText().startsWith(u"second\n"_s));
    EXPECT_EQ(pane.selectedText(), u"second\n"_s);
    run.clearTranscript();
    EXPECT_TRUE(waitUntil([this] { return pane.selection().isEmpty(); }));
    EXPECT_EQ(pane.selectedText(), QString());
}

TEST_F(OutputPaneTest, StartsAnewAfterAClearOfWhatWasScrolled)
{
    fill();
    pane.verticalScrollBar()->setValue(pane.verticalScrollBar()->maximum() / 2);
    run.clearTranscript();
    EXPECT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->maximum() == 0; }));
    const QRect line(0, 0, pane.viewport()->width(), 40);
    EXPECT_TRUE(draws(Colours::secondary(palette), line)) << "the placeholder is back";
    run.append(u"anew\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
}

TEST_F(OutputPaneTest, ComesBackToWhatWasReadWhenItIsResizedAndBack)
{
    QString text;
    for (int word = 0; word < 20'000; ++word)
        text += QString::number(word) + u' ';
    run.append(text, OutputKind::out);
    ASSERT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->maximum() > 0; }));
    pane.verticalScrollBar()->setValue(pane.verticalScrollBar()->maximum() / 2);
    const TextStore::Position top = pane.positionAt({0, 0});
    for (int width = 640; width > 400; width -= 3)
        pane.resize(width, pane.height());
    for (int height = 300; height < 800; height += 50)
        pane.resize(pane.width(), height);
    QApplication::processEvents();
    pane.resize(640, 300);
    EXPECT_EQ(pane.positionAt({0, 0}), top);
}

TEST_F(OutputPaneTest, HasAScrollBarWhileThereIsSomethingToShow)
{
    const QScrollBar &bar = *pane.verticalScrollBar();
    const int whole = pane.viewport()->width();
    EXPECT_FALSE(bar.isVisible());
    fill();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(pane.viewport()->width(), whole - bar.width());
    run.append(QString(1000, u'x'), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    // No character is behind the bar.
    TextStore::Position x = run.transcript().end() - 1000;
    for (; x < run.transcript().end(); ++x)
        EXPECT_LE(pane.characterRect(x).right(), pane.viewport()->width());
    run.clearTranscript();
    EXPECT_TRUE(waitUntil([&] { return !bar.isVisible(); }));
    EXPECT_EQ(pane.viewport()->width(), whole);
    pane.resize(500, 200);
    run.append(QString(100'000, u'x'), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    EXPECT_TRUE(waitUntil([&] { return bar.isVisible(); }));
    pane.hide();
    run.clearTranscript();
    pane.show();
    EXPECT_FALSE(bar.isVisible());
    pane.hide();
    run.append(u"again"_s, OutputKind::out);
    pane.show();
    EXPECT_TRUE(bar.isVisible());
}
