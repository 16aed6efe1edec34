#include "HistoryStore/HistoryFile.h"

#include "Text/JsonText.h"
#include "Text/WholePattern.h"

#include <nlohmann/json.hpp>

#include <QSet>
#include <QTimeZone>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace
{

using Json = nlohmann::ordered_json;

// ---- Writing. One strange entry must not make the whole file unreadable, so nothing is written that cannot be read.

/// UTF-8 that is valid whatever the text holds (half a surrogate pair becomes a replacement character).
std::string utf8(const QString &text)
{
    return text.toStdString();
}

std::string uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

std::string dateText(const QDateTime &date)
{
    const QDateTime utc = date.toUTC();
    const bool hasFourDigitYear = utc.isValid() && utc.date().year() >= 1 && utc.date().year() <= 9999;
    return hasFourDigitYear ? utc.toString(Qt::ISODate).toStdString() : "1970-01-01T00:00:00Z";
}

Json jsonFrom(const HistoryEntry &entry)
{
    Json object;
    object["id"] = uuidText(entry.id);
    object["command"] = utf8(entry.command);
    object["machine"] = utf8(entry.machine);
    if (entry.exitCode)
        object["exitCode"] = *entry.exitCode;
    object["note"] = utf8(entry.note);
    object["date"] = dateText(entry.date);
    object["duration"] = std::isfinite(entry.duration) ? entry.duration : 0.0;
    return object;
}

// ---- Reading. Each reader yields nothing when the member is missing or not in its form.

std::optional<QUuid> uuidFrom(const std::optional<QString> &text)
{
    static const WholePattern form(u"[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}"_s);
    if (!text || !form.matches(*text))
        return std::nullopt;
    return QUuid::fromString(*text);
}

std::optional<QDateTime> dateFrom(const std::optional<QString> &text)
{
    static const WholePattern form(u"([0-9]{4})-([0-9]{2})-([0-9]{2})T([0-9]{2}):([0-9]{2}):([0-9]{2})Z"_s);
    const QRegularExpressionMatch match = form.match(text.value_or(QString()));
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&match](int group) { return match.capturedView(group).toInt(); };
    const QDate day(number(1), number(2), number(3));
    const QTime time(number(4), number(5), number(6));
    if (!day.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(day, time, QTimeZone::utc());
}

/// A whole number that fits 64 signed bits.
std::optional<std::int64_t> integerFrom(const Json &value)
{
    if (!value.is_number_integer())
        return std::nullopt;
    if (value.is_number_unsigned() &&
        value.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()})
        return std::nullopt;
    return value.get<std::int64_t>();
}

std::optional<HistoryEntry> entryFrom(const Json &object)
{
    if (!object.is_object())
        return std::nullopt;
    const std::optional<QUuid> id = uuidFrom(JsonText::member(object, "id"));
    const std::optional<QString> command = JsonText::member(object, "command");
    const std::optional<QString> machine = JsonText::member(object, "machine");
    const std::optional<QString> note = JsonText::member(object, "note");
    const std::optional<QDateTime> date = dateFrom(JsonText::member(object, "date"));
    const auto duration = object.find("duration");
    if (!id || !command || !machine || !note || !date || duration == object.end() || !duration->is_number())
        return std::nullopt;

    std::optional<std::int64_t> exitCode;
    const auto code = object.find("exitCode");
    if (code != object.end() && !code->is_null()) {
        exitCode = integerFrom(*code);
        if (!exitCode)
            return std::nullopt;
    }
    return HistoryEntry{*id, *command, *machine, exitCode, *note, *date, duration->get<double>()};
}

QSet<QUuid> idsOf(const QList<HistoryEntry> &entries)
{
    QSet<QUuid> ids;
    for (const HistoryEntry &entry : entries)
        ids.insert(entry.id);
    return ids;
}

/// True for brackets in brackets far beyond what a history has, of which the reader would build a tree first.
bool isNestedDeeply(QByteArrayView content)
{
    constexpr int deepest = 100;
    int depth = 0;
    bool isInText = false;
    for (qsizetype at = 0; at < content.size(); ++at) {
        const char byte = content[at];
        if (byte == '"')
            isInText = !isInText;
        else if (isInText)
            at += byte == '\\' ? 1 : 0; // the next one is quoted
        else if (byte == '[' || byte == '{')
            ++depth;
        else if (byte == ']' || byte == '}')
            --depth;
        if (depth > deepest)
            return true;
    }
    return false;
}

} // namespace

QByteArray HistoryFile::encode(const QList<HistoryEntry> &entries, qsizetype most)
{
    QByteArray content("[");
    for (const HistoryEntry &entry : entries) {
        const std::string object = jsonFrom(entry).dump(-1, ' ', false, Json::error_handler_t::replace);
        const QByteArrayView separator(content.size() > 1 ? "," : "");
        const qsizetype size = content.size() + separator.size() + static_cast<qsizetype>(object.size()) + 1;
        if (size <= most)
            content.append(separator).append(object.data(), static_cast<qsizetype>(object.size()));
    }
    return content + ']';
}

std::optional<QList<HistoryEntry>> HistoryFile::decode(const QByteArray &content)
{
    if (content.size() > largestSize || !JsonText::mayBeJson(content) || isNestedDeeply(content))
        return std::nullopt;
    const Json document = Json::parse(content.cbegin(), content.cend(), nullptr, false);
    if (!document.is_array())
        return std::nullopt;
    QList<HistoryEntry> entries;
    for (const Json &element : document) {
        const std::optional<HistoryEntry> entry = entryFrom(element);
        if (!entry)
            return std::nullopt;
        entries.append(*entry);
    }
    return entries;
}

QList<HistoryEntry> HistoryFile::merged(const QList<HistoryEntry> &ours, const QList<HistoryEntry> &known,
                                        const QList<HistoryEntry> &theirs)
{
    const QSet<QUuid> ourIds = idsOf(ours);
    const QSet<QUuid> knownIds = idsOf(known);
    const QSet<QUuid> theirIds = idsOf(theirs);
    QList<HistoryEntry> kept = ours;
    kept.removeIf(
        [&](const HistoryEntry &entry) { return knownIds.contains(entry.id) && !theirIds.contains(entry.id); });
    QList<HistoryEntry> added = theirs;
    added.removeIf([&](const HistoryEntry &entry) { return knownIds.contains(entry.id) || ourIds.contains(entry.id); });

    QList<HistoryEntry> all;
    while (!kept.isEmpty() && !added.isEmpty())
        all.append(added.first().date > kept.first().date ? added.takeFirst() : kept.takeFirst());
    all += kept + added;
    return all.first(std::min(all.size(), mostEntries));
}
