#include "Look/PlainText/LongLines.h"

#include "Support/Printing.h"

#include <QPlainTextDocumentLayout>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

class LongLinesTest : public testing::Test
{
protected:
    LongLinesTest() { document.setDocumentLayout(new QPlainTextDocumentLayout(&document)); }

    bool insert(const QString &text)
    {
        QTextCursor end(&document);
        end.movePosition(QTextCursor::End);
        return LongLines::insert(end, text);
    }

    /// The lengths of the paragraphs, with a '+' before one that goes on with a line.
    QString paragraphs() const
    {
        QStringList lengths;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
            lengths.append((LongLines::continuesLine(block) ? u"+"_s : QString()) +
                           QString::number(block.length() - 1));
        return lengths.join(u' ');
    }

    QString whole() const { return LongLines::text(document, 0, document.characterCount() - 1); }

    QTextDocument document;
};

} // namespace

TEST_F(LongLinesTest, CutALineIntoParagraphsOfTwoThousandUnits)
{
    EXPECT_FALSE(insert(QString(2000, u'x')));
    EXPECT_EQ(paragraphs(), u"2000"_s);
    EXPECT_TRUE(insert(u"y"_s)) << "what stands there counts";
    EXPECT_EQ(paragraphs(), u"2000 +1"_s);
    EXPECT_TRUE(insert(u"\n"_s + QString(4001, u'z')));
    EXPECT_EQ(paragraphs(), u"2000 +1 2000 +2000 +1"_s);
    EXPECT_EQ(whole(), QString(2000, u'x') + u"y\n"_s + QString(4001, u'z'));
}

TEST_F(LongLinesTest, CutBetweenCharacters)
{
    const QString text = u"x"_s + u"\U0001F600"_s.repeated(1500);
    EXPECT_TRUE(insert(text));
    EXPECT_EQ(paragraphs(), u"2001 +1000"_s);
    EXPECT_EQ(whole(), text);
}

TEST_F(LongLinesTest, CountAnewBehindEveryLineEnd)
{
    const QString line(1999, u'x');
    EXPECT_FALSE(insert(line + u'\n' + line + u'\r' + line + QChar(QChar::ParagraphSeparator) + line));
    EXPECT_EQ(paragraphs(), u"1999 1999 1999 1999"_s);
}

TEST_F(LongLinesTest, AreReadFromAnywhereToAnywhere)
{
    insert(QString(1999, u'a') + u"bc\nd\u2028e"_s);
    EXPECT_EQ(paragraphs(), u"2000 +1 3"_s);
    const auto read = [this](int begin, int end) { return LongLines::text(document, begin, end); };
    EXPECT_EQ(read(1998, 2002), u"abc"_s) << "what parts the paragraphs of a line is none of it";
    EXPECT_EQ(read(2001, 2003), u"c\n"_s);
    EXPECT_EQ(read(2002, 2006), u"\nd\ne"_s);
    EXPECT_EQ(read(2001, 2001), QString());
    EXPECT_EQ(read(2004, 2005), u"\n"_s) << "what Shift-Return types";
}

TEST_F(LongLinesTest, TakeThePlaceOfWhatIsSelected)
{
    insert(u"one two"_s);
    QTextCursor cursor(&document);
    cursor.setPosition(3, QTextCursor::KeepAnchor);
    EXPECT_FALSE(LongLines::insert(cursor, u"1"));
    EXPECT_EQ(whole(), u"1 two"_s);
    document.undo();
    EXPECT_EQ(whole(), u"one two"_s) << "in one step";
}
