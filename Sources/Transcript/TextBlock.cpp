#include "Transcript/TextBlock.h"

#include <QLocale>
#include <QString>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

QByteArray TextBlock::content() const
{
    const qsizetype kindsSize = static_cast<qsizetype>(kinds.size()) * qsizetype{sizeof(KindMark)};
    QByteArray content(size + kindsSize, Qt::Uninitialized);
    std::memcpy(content.data(), memory.data(), static_cast<std::size_t>(size));
    std::memcpy(content.data() + size, kinds.data(), static_cast<std::size_t>(kindsSize));
    return content;
}

void TextBlock::readContent(std::int32_t textSize, std::int32_t contentSize)
{
    size = textSize;
    kinds.resize(static_cast<std::size_t>(contentSize - textSize) / sizeof(KindMark));
    std::memcpy(kinds.data(), memory.data() + textSize, kinds.size() * sizeof(KindMark));
}

void TextBlock::becomeMissing(std::int64_t bytes)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QByteArray sentence =
        (english.toString(static_cast<qlonglong>(bytes)) + u" bytes of the output are missing here.\n"_s).toUtf8();
    isMissing = true;
    size = static_cast<std::int32_t>(std::min<std::int64_t>(bytes, sentence.size()));
    std::copy_n(sentence.begin(), size, memory.data());
    kinds = {{0, OutputKind::warn}};
}

std::shared_ptr<TextBlock> TextBlockPool::take()
{
    std::unique_ptr<TextBlock> block;
    {
        const std::lock_guard guard(m_lock);
        if (!m_free.empty()) {
            block = std::move(m_free.back());
            m_free.pop_back();
        }
    }
    if (!block)
        block = std::make_unique<TextBlock>();
    block->size = 0;
    block->kinds.clear();
    block->isMissing = false;
    return {block.release(),
            [pool = shared_from_this()](TextBlock *unused) { pool->giveBack(std::unique_ptr<TextBlock>(unused)); }};
}

void TextBlockPool::giveBack(std::unique_ptr<TextBlock> block)
{
    const std::lock_guard guard(m_lock);
    if (m_free.size() < mostFree)
        m_free.push_back(std::move(block));
}

void TextBlockPool::clear()
{
    std::vector<std::unique_ptr<TextBlock>> unused;
    const std::lock_guard guard(m_lock);
    unused.swap(m_free);
}
