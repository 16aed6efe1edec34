#include "MachineStore/MachineList.h"

#include "Text/JsonText.h"

#include <nlohmann/json.hpp>

#include <QRegularExpression>
#include <QStringList>

#include <string>

using namespace Qt::StringLiterals;

namespace
{

using Json = nlohmann::json;

/// The member when it is an object, else null.
const Json *objectMember(const Json &object, const char *key)
{
    const auto member = object.find(key);
    return member != object.end() && member->is_object() ? &*member : nullptr;
}

std::optional<Machine> machineFrom(const Json &element)
{
    if (!element.is_object())
        return std::nullopt;
    const Json *const nested = objectMember(element, "record");
    const Json &record = nested ? *nested : element;
    const Json *const image = objectMember(record, "image");
    const auto ofImageOrRecord = [&](const char *key) {
        const std::optional<QString> ofImage = image ? JsonText::member(*image, key) : std::nullopt;
        return ofImage ? *ofImage : JsonText::member(record, key).value_or(QString());
    };

    const std::optional<QString> name = JsonText::member(record, "name");
    if (!name)
        return std::nullopt;
    std::optional<QString> state = JsonText::member(record, "state");
    if (!state)
        state = JsonText::member(element, "state");
    return Machine{*name, state.value_or(u"unknown"_s), ofImageOrRecord("distro"), ofImageOrRecord("version")};
}

} // namespace

std::optional<QList<Machine>> MachineList::parseMachinesJson(const QString &json)
{
    // Without exceptions: what cannot be read comes back as a discarded value, which is no array either.
    const std::string text = json.toStdString();
    const Json document = JsonText::mayBeJson(text) ? Json::parse(text, nullptr, false) : Json();
    if (!document.is_array())
        return std::nullopt;
    QList<Machine> machines;
    for (const Json &element : document) {
        if (const std::optional<Machine> machine = machineFrom(element))
            machines.append(*machine);
    }
    return machines;
}

QList<Machine> MachineList::parseMachinesText(const QString &text)
{
    static const QRegularExpression lineEnds(u"[\\n\\r]"_s);
    static const QRegularExpression blanks(u"[ \\t]+"_s);
    QList<Machine> machines;
    for (const QString &line : text.split(lineEnds, Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(blanks, Qt::SkipEmptyParts);
        // A heading may be underlined.
        if (fields.size() < 2 || fields[0].toUpper() == "NAME"_L1 || fields[0].count(u'-') == fields[0].size())
            continue;
        machines.append({fields[0], fields[1], fields.value(2), fields.value(3)});
    }
    return machines;
}
