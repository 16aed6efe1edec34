#include "HistoryStore/HistoryFile.h"

#include "Text/JsonText.h"
#include "Text/WholePattern.h"

#include <nlohmann/json.hpp>

#include <QTimeZone>

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

} // namespace

QByteArray HistoryFile::encode(const QList<HistoryEntry> &entries)
{
    Json array = Json::array();
    for (const HistoryEntry &entry : entries)
        array.push_back(jsonFrom(entry));
    return QByteArray::fromStdString(array.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::optional<QList<HistoryEntry>> HistoryFile::decode(const QByteArray &content)
{
    if (!JsonText::mayBeJson(content))
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
