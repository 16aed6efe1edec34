#include "Text/VisibleText.h"

#include "Support/Printing.h"
#include "Text/Shapeless.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(VisibleText, WritesOutEveryCharacterWithoutAShape)
{
    for (const auto &[character, shown] :
         std::initializer_list<std::pair<char32_t, QString>>{{0x202e, u"bo⟨U+202E⟩x"_s},
                                                             {0x200b, u"bo⟨U+200B⟩x"_s},
                                                             {0x3164, u"bo⟨U+3164⟩x"_s},
                                                             {0x115f, u"bo⟨U+115F⟩x"_s},
                                                             {0x034f, u"bo⟨U+034F⟩x"_s},
                                                             {0x00ad, u"bo⟨U+00AD⟩x"_s},
                                                             {0x200c, u"bo⟨U+200C⟩x"_s},
                                                             {0x200d, u"bo⟨U+200D⟩x"_s},
                                                             {0xfe0f, u"bo⟨U+FE0F⟩x"_s},
                                                             {0xe0061, u"bo⟨U+E0061⟩x"_s},
                                                             {0xfff9, u"bo⟨U+FFF9⟩x"_s},
                                                             {0xffa0, u"bo⟨U+FFA0⟩x"_s},
                                                             {0x2028, u"bo⟨U+2028⟩x"_s},
                                                             {0x85, u"bo⟨U+0085⟩x"_s},
                                                             {0x1b, u"bo⟨U+001B⟩x"_s}}) {
        EXPECT_EQ(VisibleText::oneLine(u"bo"_s + QString::fromUcs4(&character, 1) + u'x'), shown);
        EXPECT_TRUE(Shapeless::isShapeless(character)) << shown.toStdString();
    }
    EXPECT_EQ(VisibleText::oneLine(u"\u200dx\ufe0f\u200c"_s), u"⟨U+200D⟩x⟨U+FE0F⟩⟨U+200C⟩"_s) << "also at the ends";
}

TEST(VisibleText, LeavesAJoinerThatDoesWhatItIsFor)
{
    for (const QString &text :
         {u"\u0645\u06cc\u200c\u062e\u0648\u0627\u0647\u0645"_s,                      // a Persian word
          u"\u0631\u0648\u0632\u200c\u0647\u0627"_s,                                  // behind a letter that joins none
          u"\u0645\u06cc\u064e\u200c\u062e"_s,                                        // with a vowel sign
          u"\u0915\u094d\u200d\u0937"_s, u"\u0915\u094d\u200c\u0937"_s,               // Devanagari
          u"\U0001f469\u200d\U0001f52c"_s, u"\U0001f469\U0001f3fd\u200d\U0001f52c"_s, // a scientist
          u"\u2764\ufe0f\u200d\U0001f525"_s, u"\u2764\ufe0f"_s, u"1\ufe0f\u20e3"_s})  // a heart on fire, a keycap
        EXPECT_EQ(VisibleText::oneLine(text), text);
}

TEST(VisibleText, LeavesTheTagsOfAFlagThatExists)
{
    const QString scotland = u"\U0001f3f4\U000e0067\U000e0062\U000e0073\U000e0063\U000e0074\U000e007f"_s;
    EXPECT_EQ(VisibleText::oneLine(scotland), scotland);
    EXPECT_EQ(VisibleText::oneLine(u"a"_s + scotland + scotland + u"b"_s), u"a"_s + scotland + scotland + u"b"_s);
    EXPECT_EQ(VisibleText::oneLine(scotland + u"\U000e0067"_s), scotland + u"⟨U+E0067⟩"_s);
    EXPECT_EQ(VisibleText::oneLine(scotland.mid(2, 4)), u"⟨U+E0067⟩⟨U+E0062⟩"_s);
    EXPECT_EQ(VisibleText::oneLine(u"\U0001f3f4\U000e0068\U000e0069\U000e007f"_s),
              u"\U0001f3f4⟨U+E0068⟩⟨U+E0069⟩⟨U+E007F⟩"_s);
}

TEST(VisibleText, WritesOutAJoinerThatOnlyHides)
{
    EXPECT_EQ(VisibleText::oneLine(u"\u0645\u200c"_s), u"\u0645⟨U+200C⟩"_s) << "at the end of a word";
    EXPECT_EQ(VisibleText::oneLine(u"\u0645\u200c\u200c\u062e"_s), u"\u0645⟨U+200C⟩⟨U+200C⟩\u062e"_s);
    EXPECT_EQ(VisibleText::oneLine(u"\u0645\u200cx"_s), u"\u0645⟨U+200C⟩x"_s) << "between two scripts";
    EXPECT_EQ(VisibleText::oneLine(u"\U0001f469\u200dx"_s), u"\U0001f469⟨U+200D⟩x"_s);
    EXPECT_EQ(VisibleText::oneLine(u"1\ufe0f2"_s), u"1⟨U+FE0F⟩2"_s);
}

TEST(VisibleText, IsCutToAsLittleAsIsAskedFor)
{
    EXPECT_EQ(VisibleText::elidedEnd(u"ab"_s, 0), u"…"_s);
    EXPECT_EQ(VisibleText::elidedEnd(u"ab"_s, 1), u"a…"_s);
    EXPECT_EQ(VisibleText::elidedEnd(u"\U0001f433b"_s, 1), u"…"_s) << "half a character is none";
    EXPECT_EQ(VisibleText::elidedMiddle(u"ab"_s, 1), u"…"_s);
    EXPECT_EQ(VisibleText::elidedMiddle(u"abc"_s, 2), u"a…c"_s);
    EXPECT_EQ(VisibleText::elidedMiddle(u"\U0001f433b\U0001f433"_s, 2), u"…"_s);
}

TEST(VisibleText, SaysAtMostFiveHundredAsANameAndAThousandInAToolTip)
{
    EXPECT_EQ(VisibleText::accessibleName(QString(500, u'x')), QString(500, u'x'));
    EXPECT_EQ(VisibleText::accessibleName(QString(501, u'x')), QString(500, u'x') + u'…');
    EXPECT_EQ(VisibleText::toolTip(QString(1000, u'x')), u"<span>"_s + QString(1000, u'x') + u"</span>"_s);
    EXPECT_EQ(VisibleText::toolTip(QString(1001, u'x')), u"<span>"_s + QString(1000, u'x') + u"…</span>"_s);
    EXPECT_EQ(VisibleText::toolTip({}), QString());
}

TEST(VisibleText, WritesOutTheFirstAndTheLastTagAndNothingBeside)
{
    for (const char32_t character : {U'\U000e001f', U'\U000e0020', U'\U000e007f', U'\U000e0080'}) {
        const QString text = u"a"_s + QString::fromUcs4(&character, 1);
        EXPECT_TRUE(VisibleText::oneLine(text).startsWith(u"a⟨U+E00"_s)) << std::uint32_t{character};
    }
    EXPECT_EQ(VisibleText::oneLine(u"\U000e0067"_s), u"⟨U+E0067⟩"_s) << "by itself";
    EXPECT_EQ(VisibleText::oneLine(u"\u0301\u200c\u062e"_s), u"\u0301⟨U+200C⟩\u062e"_s) << "behind a mark alone";
    EXPECT_EQ(VisibleText::oneLine(u"\u0645\u200c\u062e"_s), u"\u0645\u200c\u062e"_s) << "at the very start";
}

TEST(VisibleText, WritesOutTheThreeMarksOfAnnotationsButNotWhatStandsForAnObject)
{
    EXPECT_EQ(VisibleText::oneLine(u"\ufff9\ufffa\ufffb\ufffc\ufffd"_s), u"⟨U+FFF9⟩⟨U+FFFA⟩⟨U+FFFB⟩\ufffc\ufffd"_s);
}

TEST(VisibleText, LeavesThePresentationOfAnEmojiAndOfNothingElse)
{
    for (const QString &presentation : {u"\ufe0e"_s, u"\ufe0f"_s}) {
        EXPECT_EQ(VisibleText::oneLine(u"\u2764"_s + presentation), u"\u2764"_s + presentation);
        EXPECT_EQ(VisibleText::oneLine(u"#"_s + presentation + u'\u20e3'), u"#"_s + presentation + u'\u20e3');
        const QString name = u"⟨U+FE0"_s + (presentation == u"\ufe0e"_s ? u'E' : u'F') + u'⟩';
        EXPECT_EQ(VisibleText::oneLine(u"x"_s + presentation), u"x"_s + name);
        EXPECT_EQ(VisibleText::oneLine(u"x"_s + presentation + u'\u20e3'), u"x"_s + name + u'\u20e3') << "no key";
        EXPECT_EQ(VisibleText::oneLine(u"\u2764\u0301"_s + presentation), u"\u2764\u0301"_s + name);
    }
}

TEST(VisibleText, IsNoMarkupInAToolTipAndNoPlaceForAMarkInATitle)
{
    EXPECT_EQ(VisibleText::toolTip(u"<b>a</b> & \"b\""_s), u"<span>&lt;b&gt;a&lt;/b&gt; &amp; &quot;b&quot;</span>"_s);
    EXPECT_EQ(VisibleText::windowTitle(u"Logs: web[*][*] [ * ]"_s), u"Logs: web[*][*][*][*] [ * ]"_s);
}
