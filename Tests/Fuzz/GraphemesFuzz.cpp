// Where characters end, beside ICU, and how the output pane reads them.

#include "Fuzzing.h"
#include "Text/DisplayClusters.h"
#include "Text/GraphemeBreaker.h"
#include "Text/GraphemeCounter.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/utext.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <set>

using Fuzzing::require;

namespace
{

std::set<qsizetype> boundariesByIcu(QByteArrayView text)
{
    UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    UText *const view = utext_openUTF8(nullptr, text.data(), text.size(), &status);
    iterator->setText(view, status);
    require(U_SUCCESS(status), "ICU reads the text");
    std::set<qsizetype> boundaries;
    for (int at = iterator->first(); at != icu::BreakIterator::DONE; at = iterator->next())
        boundaries.insert(at);
    utext_close(view);
    boundaries.erase(text.size());
    return boundaries;
}

std::set<qsizetype> boundaries(QByteArrayView text)
{
    GraphemeBreaker breaker;
    std::set<qsizetype> result;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        if (breaker.startsCluster(Utf8::next(text, at)))
            result.insert(start);
    }
    return result;
}

/// The characters of the text when it comes in pieces of so many code points.
int countInPieces(QByteArrayView text, int codePoints)
{
    GraphemeCounter counter(std::numeric_limits<int>::max());
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        for (int count = 0; count < codePoints && at < text.size(); ++count)
            Utf8::next(text, at);
        counter.add(text.sliced(start, at - start));
    }
    return counter.count();
}

void checkDisplay(QByteArrayView text)
{
    DisplayClusters clusters(text);
    DisplayCluster cluster;
    qsizetype at = 0;
    while (clusters.next(cluster)) {
        require(cluster.begin == at && cluster.size > 0, "the clusters are the text, without a gap");
        at = cluster.end();
        require(at <= text.size() && (at == text.size() || !Utf8::isContinuation(text[at])), "no character is cut");
        require(cluster.cells >= 0 && cluster.cells <= 9, "a cluster takes few cells");
        if (cluster.look == DisplayCluster::Look::symbol) {
            const QByteArray name = outputSymbolName(cluster.first);
            require(name.size() == cluster.cells, "a symbol takes the cells of its name");
            require(std::all_of(name.cbegin(), name.cend(), [](char byte) { return byte > ' ' && byte <= '~'; }),
                    "a symbol's name is printable");
        }
        require(cluster.look == DisplayCluster::Look::symbol || cluster.look == DisplayCluster::Look::tab ||
                    cluster.look == DisplayCluster::Look::lineEnd || (cluster.first >= ' ' && cluster.first != 0x7f),
                "no control character is drawn as it is");
    }
    require(at == text.size(), "the clusters reach to the end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text = Fuzzing::utf8(Fuzzing::bytes(data, size));
    const std::set<qsizetype> expected = boundariesByIcu(text);
    require(boundaries(text) == expected, "characters end where ICU says");
    const int count = static_cast<int>(expected.size());
    require(countInPieces(text, 1) == count && countInPieces(text, 3) == count, "pieces do not change the count");
    checkDisplay(text);
    return 0;
}
