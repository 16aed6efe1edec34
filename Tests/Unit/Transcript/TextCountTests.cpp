#include "Transcript/TextCount.h"

#include "Unit/Transcript/RandomText.h"

#include <gtest/gtest.h>

TEST(TextCount, CountsBytesUtf16UnitsAndLineFeedsOfTextsOfEveryLength)
{
    RandomText random(11);
    for (int round = 0; round < 400; ++round) {
        const QString text = random.text(random.below(3000)) + QString(random.below(600), u'\n');
        const QByteArray bytes = text.toUtf8();
        EXPECT_EQ(TextCount::of(bytes), (TextCount{bytes.size(), text.size(), text.count(u'\n')}));
    }
}
