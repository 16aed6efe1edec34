#include "ContentView/Screens/TrimmedText.h"
#include "Support/Printing.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(TrimmedText, TakesSpacesOfAnyWidthAndTabsFromTheEndsOfAField)
{
    EXPECT_EQ(TrimmedText::withoutSpacesAndTabs(u" \t\u00a0\u2009git  curl\u3000 \t"), u"git  curl");
    EXPECT_TRUE(TrimmedText::withoutSpacesAndTabs(u" \t\u00a0").isEmpty());
    EXPECT_TRUE(TrimmedText::withoutSpacesAndTabs({}).isEmpty());
    EXPECT_EQ(TrimmedText::withoutSpacesAndTabs(u"\n"), u"\n");
}

TEST(TrimmedText, TakesLineBreaksTooFromTheEndsOfAScript)
{
    EXPECT_EQ(TrimmedText::withoutSpacesAndLineBreaks(u"\r\n \tls\n\nid\u2028\n"), u"ls\n\nid");
    EXPECT_TRUE(TrimmedText::withoutSpacesAndLineBreaks(u" \n\t\r\n").isEmpty());
}
