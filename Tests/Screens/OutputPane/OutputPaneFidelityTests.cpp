// What the pane shows, copies and tells is what arrived, for the texts that are measured and however they were cut.

#include "OutputPane/OutputPane.h"
#include "RunController/RunController.h"
#include "Screens/TestWindow.h"
#include "Support/OutputTexts.h"
#include "Support/Seed.h"
#include "Text/Utf8Repair.h"

#include <QAccessible>
#include <QClipboard>

#include <random>
#include <tuple>

using namespace Qt::StringLiterals;

namespace
{

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// A piece of valid UTF-8, cut anywhere, read by itself: each byte that continues a character begun before it, and the
/// beginning of one that ends after it, is a replacement character.
QString decodedAlone(QByteArrayView piece)
{
    QString result;
    while (!piece.isEmpty() && isContinuation(piece.front())) {
        result += QChar::ReplacementCharacter;
        piece = piece.sliced(1);
    }
    qsizetype last = piece.size();
    while (last > 0 && isContinuation(piece[last - 1]))
        --last;
    if (last > 0) {
        const auto lead = static_cast<unsigned char>(piece[last - 1]);
        const qsizetype length = lead < 0x80U ? 1 : lead < 0xE0U ? 2 : lead < 0xF0U ? 3 : 4;
        if (piece.size() - (last - 1) < length)
            return result + QString::fromUtf8(piece.first(last - 1)) + QChar::ReplacementCharacter;
    }
    return result + QString::fromUtf8(piece);
}

/// The characters of a row fill its bytes and its columns one after the other.
bool isFilled(const OutputPaneRow &row, qint64 size)
{
    qint64 at = 0;
    int column = 0;
    for (const DisplayCluster &cluster : row.clusters()) {
        if (cluster.begin != at || cluster.column != column)
            return false;
        at = cluster.end();
        column += cluster.cells;
    }
    return at == size;
}

/// All rows of the pane, joined.
QByteArray rowsJoined(OutputPane &pane)
{
    const OutputPaneNavigation &navigation = pane.navigation();
    const TextView &store = pane.text();
    QByteArray joined;
    for (TextStore::Position position = store.begin(); position < store.end();) {
        const OutputRange range = navigation.rowAt(position);
        const OutputPaneRow row = pane.laidOutRow(position);
        if (range.begin != position || range.end <= position || !isFilled(row, range.end - range.begin)) {
            ADD_FAILURE() << "the row at " << position;
            break;
        }
        const TextStore::BlockNumber block = store.blockAt(position);
        joined += store.bytes(block).sliced(position - store.block(block).begin(), range.end - position);
        position = range.end;
    }
    return joined;
}

QString copiedWhole(OutputPane &pane)
{
    QApplication::clipboard()->clear();
    QTest::keySequence(&pane, QKeySequence::SelectAll);
    QTest::keySequence(&pane, QKeySequence::Copy);
    return QApplication::clipboard()->text();
}

/// Read as a screen reader does it, in stretches.
QString toldInStretches(OutputPane &pane, std::mt19937 &random)
{
    QAccessibleTextInterface *const text = QAccessible::queryAccessibleInterface(&pane)->textInterface();
    QString told;
    while (told.size() < text->characterCount()) {
        const auto from = static_cast<int>(told.size());
        const int to = std::min(text->characterCount(), from + 1 + static_cast<int>(random() % 5000));
        QString stretch = text->text(from, to);
        // Half a surrogate pair cannot be told; the stretch then goes on to the character's end or stops before it.
        EXPECT_NEAR(static_cast<double>(stretch.size()), to - from, 1);
        if (stretch.isEmpty())
            stretch = text->text(from, to + 1);
        told += stretch;
        if (testing::Test::HasFailure())
            break;
    }
    return told;
}

/// Equal, without printing megabytes where it is not.
void expectSame(const QString &found, const QString &expected, const char *what)
{
    const auto [one, other] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
    EXPECT_TRUE(one == found.end() && other == expected.end())
        << what << " differs at " << one - found.begin() << " of " << found.size() << " (" << expected.size() << ')';
}

using KindAndLongestPiece = std::tuple<OutputTexts::Kind, int>;

class OutputPaneFidelity : public testing::TestWithParam<KindAndLongestPiece>
{
};

} // namespace

TEST_P(OutputPaneFidelity, ShowsCopiesAndTellsWhatArrived)
{
    const auto [kind, longestPiece] = GetParam();
    const QByteArray bytes = OutputTexts::text(kind, qsizetype{2} * 1024 * 1024);
    RunController run;
    OutputPane pane(run, run.transcript().text());
    pane.resize(640, 300);
    pane.show();
    pane.activateWindow();
    pane.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&pane));

    std::mt19937 random(seedOr(static_cast<unsigned>(longestPiece)));
    QString expected;
    for (qsizetype from = 0; from < bytes.size();) {
        const qsizetype size =
            std::min<qsizetype>(1 + random() % static_cast<unsigned>(longestPiece), bytes.size() - from);
        const QByteArrayView piece = QByteArrayView(bytes).sliced(from, size);
        expected += decodedAlone(piece);
        const QByteArray text = Utf8Repair::repaired(piece).value_or(piece.toByteArray());
        run.append(QUtf8StringView(text.constData(), text.size()), OutputKind::out);
        from += size;
        // The pane keeps up with what it is shown, also in between.
        if (random() % 64 == 0)
            QApplication::processEvents();
    }

    expectSame(QString::fromUtf8(rowsJoined(pane)), expected, "what is shown");
    expectSame(copiedWhole(pane), expected, "what is copied");
    expectSame(toldInStretches(pane, random), expected, "what is told");
    expectSame(run.plainText(), expected, "the plain text");
}

INSTANTIATE_TEST_SUITE_P(ForEveryTextAndCut, OutputPaneFidelity,
                         testing::Combine(testing::ValuesIn(OutputTexts::allKinds), testing::Values(300, 200'000)),
                         [](const testing::TestParamInfo<KindAndLongestPiece> &test) {
                             std::string name(OutputTexts::nameOf(std::get<0>(test.param)));
                             std::erase(name, '-');
                             return name + (std::get<1>(test.param) < 1000 ? "InShortPieces" : "InLongPieces");
                         });

TEST(OutputPaneFidelity, ShowsWhatARealChildPrinted)
{
    const QByteArray bytes = OutputTexts::text(OutputTexts::Kind::codes, qsizetype{2} * 1024 * 1024);
    TestWindow window;
    const QString file = window.orbStack.tools().addFile(u"printed"_s, bytes);
    ContentView &content = window.showRunning({u"box"_s});
    auto &pane = *content.findChild<OutputPane *>();
    window.run.setScript(u"cat '%1'\n"_s.arg(file) + window.orbStack.tools().waitForFile(u"seen"_s));
    ByName::press(content, u"Run"_s);
    // Longer than the bound, so the echoed command has gone and the output alone is left.
    EXPECT_TRUE(
        waitUntil([&] { return window.run.transcript().end() - window.run.transcript().begin() == bytes.size(); }));
    expectSame(QString::fromUtf8(rowsJoined(pane)), QString::fromUtf8(bytes), "what is shown");
    pane.setFocus();
    expectSame(copiedWhole(pane), QString::fromUtf8(bytes), "what is copied");
    window.orbStack.tools().addFile(u"seen"_s);
    EXPECT_TRUE(waitUntil([&] { return !window.run.isRunning(); }));
}
