#include "Transcript/TextBlock.h"

#include <QLocale>
#include <QString>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

void TextBlock::beginWith(QByteArrayView text)
{
    std::copy(text.begin(), text.end(), memory.data());
    size = static_cast<std::int32_t>(text.size());
    kinds.clear();
    isMissing = false;
}

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
    isMissing = false;
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
