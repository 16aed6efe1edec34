#include "ContentView/OutputPane.h"

#include "ContentView/Colours.h"
#include "RunController/RunController.h"
#include "Support/Waiting.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QImage>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

using namespace Qt::StringLiterals;

namespace
{

/// The pane on screen over a controller of its own.
class OutputPaneTest : public testing::Test
{
protected:
    OutputPaneTest()
    {
        pane.resize(640, 300);
        pane.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&pane));
        QApplication::setActiveWindow(&pane);
        pane.setFocus();
    }

    ~OutputPaneTest() override { QApplication::setPalette(palette); }

    bool isAtEnd() { return pane.verticalScrollBar()->value() == pane.verticalScrollBar()->maximum(); }

    /// The last character is in view once the pane has caught up with the transcript.
    bool showsEnd()
    {
        return waitUntil([this] {
            const QRect last = pane.characterRect(run.transcript().end() - 1);
            return isAtEnd() && !last.isEmpty() && pane.viewport()->rect().contains(last.center());
        });
    }

    QAccessibleTextInterface *accessibleText()
    {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(&pane);
        return interface != nullptr ? interface->textInterface() : nullptr;
    }

    QString wholeAccessibleText()
    {
        QAccessibleTextInterface *const text = accessibleText();
        return text != nullptr ? text->text(0, text->characterCount()) : QString();
    }

    /// Whether a pixel of about this colour is drawn in the rectangle.
    bool draws(const QColor &colour, const QRect &rectangle)
    {
        const QImage image = pane.viewport()->grab(rectangle).toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                const int distance = std::abs(pixel.red() - colour.red()) + std::abs(pixel.green() - colour.green()) +
                                     std::abs(pixel.blue() - colour.blue());
                if (distance < 24)
                    return true;
            }
        }
        return false;
    }

    const QPalette palette = QApplication::palette();
    RunController run;
    OutputPane pane{run};
};

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
    EXPECT_GE(pane.minimumHeight(), 160);
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

TEST_F(OutputPaneTest, BringsTheEndIntoViewAlsoWhenTheLastSegmentGrows)
{
    for (int line = 0; line < 500; ++line)
        run.append(u"line %1\n"_s.arg(line), OutputKind::out);
    ASSERT_EQ(run.transcript().segmentCount(), 1U);
    EXPECT_TRUE(waitUntil([this] { return pane.verticalScrollBar()->maximum() > 0; }));
    EXPECT_TRUE(showsEnd());
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
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    EXPECT_TRUE(showsEnd());
    for (const QPalette &shown : {palette, dark}) {
        QApplication::setPalette(shown);
        QApplication::processEvents();
        TextStore::Position position = run.transcript().begin();
        for (const OutputKind kind : kinds) {
            EXPECT_TRUE(draws(Colours::forKind(kind, shown), pane.characterRect(position)))
                << "kind " << static_cast<int>(kind);
            position = run.transcript().runAt(position).end;
        }
    }
}

TEST_F(OutputPaneTest, TellsTheAccessibilityBusWhatArrivedHoweverItWasCut)
{
    const QString text =
        u"plain \u00e9\u0301 \u4e2d\u6587 \U0001f469\u200d\U0001f52c \u0645\u0631\u062d\r\nnext\x07\n"_s.repeated(40);
    const QByteArray bytes = text.toUtf8();
    std::mt19937 random(7);
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

TEST_F(OutputPaneTest, SelectsAWordByTwoClicksAndALineByThree)
{
    run.append(u"alpha beta gamma\nsecond line\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    const QPoint inBeta = pane.characterRect(7).center();
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    QTest::mouseDClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    EXPECT_EQ(pane.selectedText().trimmed(), u"beta"_s);
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, inBeta);
    EXPECT_EQ(pane.selectedText().trimmed(), u"alpha beta gamma"_s);
}

TEST_F(OutputPaneTest, ExtendsTheSelectionByKeyboard)
{
    run.append(u"abcdef\n"_s, OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QTest::keySequence(&pane, QKeySequence::MoveToStartOfDocument);
    QTest::keySequence(&pane, QKeySequence::SelectNextChar);
    QTest::keySequence(&pane, QKeySequence::SelectNextChar);
    EXPECT_EQ(pane.selectedText(), u"ab"_s);
    QTest::keySequence(&pane, QKeySequence::SelectEndOfLine);
    EXPECT_EQ(pane.selectedText(), u"abcdef"_s);
}

TEST_F(OutputPaneTest, IsAsQuickWithOneLineOf100MegabytesAsWithAMillionLines)
{
    const QByteArray piece(1024 * 1024, 'x');
    for (int count = 0; count < 100; ++count)
        run.append(QUtf8StringView(piece.constData(), piece.size()), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    QElapsedTimer watch;
    watch.start();
    pane.resize(pane.width() - 20, pane.height());
    pane.grab();
    pane.verticalScrollBar()->setValue(pane.verticalScrollBar()->maximum() / 2);
    pane.grab();
    EXPECT_LT(watch.elapsed(), 2000); // some milliseconds; far from what laying out the whole would take
    EXPECT_EQ(run.transcript().end() - run.transcript().begin(), 100 * piece.size());
}

TEST_F(OutputPaneTest, NeverWidensForWhatItShows)
{
    const int least = pane.minimumSizeHint().width();
    run.append(QString(1'000'000, u'W'), OutputKind::out);
    EXPECT_TRUE(showsEnd());
    EXPECT_EQ(pane.minimumSizeHint().width(), least);
    EXPECT_EQ(pane.width(), 640);
    EXPECT_LE(pane.horizontalScrollBar()->maximum(), 0);
}
