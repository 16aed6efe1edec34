#include "OutputPane/OutputCopy.h"

#include "Support/Printing.h"
#include "Support/Waiting.h"
#include "Transcript/Transcript.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

class OutputCopyTest : public testing::Test
{
protected:
    OutputCopyTest()
    {
        transcript.append("one\n\u4e2d\n", OutputKind::out);
        transcript.append("three\n", OutputKind::err);
        QGuiApplication::clipboard()->setText(u"before"_s);
        window.show();
    }

    QString copied() const { return QGuiApplication::clipboard()->text(); }

    Transcript transcript;
    QWidget window;
};

} // namespace

TEST_F(OutputCopyTest, CopiesWhatStandsBetweenTwoPositions)
{
    OutputCopy::copy(&window, transcript.text(), 2, transcript.end() - 3);
    EXPECT_EQ(copied(), u"e\n\u4e2d\nthr"_s);
    EXPECT_EQ(window.findChild<QMessageBox *>(), nullptr);
}

TEST_F(OutputCopyTest, CopiesExactlyTheMost)
{
    OutputCopy::copy(&window, transcript.text(), transcript.begin(), transcript.end(), transcript.end());
    EXPECT_EQ(copied(), transcript.plainText());
    EXPECT_EQ(window.findChild<QMessageBox *>(), nullptr);
}

TEST_F(OutputCopyTest, RefusesMoreWithANoticeAndLeavesTheClipboardAlone)
{
    OutputCopy::copy(&window, transcript.text(), transcript.begin(), transcript.end(), transcript.end() - 1);
    EXPECT_EQ(copied(), u"before"_s);
    auto *notice = window.findChild<QMessageBox *>();
    ASSERT_NE(notice, nullptr);
    EXPECT_TRUE(notice->isVisible());
    EXPECT_EQ(notice->text(), u"This is too much output to copy."_s);
    EXPECT_EQ(notice->informativeText(), u"Select 512 MiB or less and copy that."_s);
    ASSERT_EQ(notice->buttons().size(), 1);
    notice->buttons().first()->click();
    EXPECT_TRUE(waitUntil([this] { return window.findChild<QMessageBox *>() == nullptr; }));
}
