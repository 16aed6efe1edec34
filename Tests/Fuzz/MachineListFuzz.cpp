// What `orb list` prints, in both forms.

#include "Fuzzing.h"
#include "MachineStore/MachineList.h"

#include <nlohmann/json.hpp>

using Fuzzing::require;
using namespace Qt::StringLiterals;

namespace
{

/// The table read once more, character by character.
QList<Machine> readSlowly(const QString &text)
{
    QList<Machine> machines;
    QStringList fields;
    QString field;
    for (const QChar character : text + u'\n') {
        const bool endsLine = character == u'\n' || character == u'\r';
        if (!endsLine && character != u' ' && character != u'\t') {
            field += character;
            continue;
        }
        if (!field.isEmpty())
            fields << field;
        field.clear();
        if (!endsLine)
            continue;
        const bool isUnderline = !fields.isEmpty() && QString(fields[0]).remove(u'-').isEmpty();
        if (fields.size() >= 2 && fields[0].toUpper() != u"NAME"_s && !isUnderline)
            machines << Machine{fields[0], fields[1], fields.value(2), fields.value(3)};
        fields.clear();
    }
    return machines;
}

/// The machines as a JSON array, flat or nested.
QString json(const QList<Machine> &machines, bool isNested)
{
    nlohmann::json array = nlohmann::json::array();
    for (const Machine &machine : machines) {
        nlohmann::json record{{"name", machine.name.toStdString()}, {"state", machine.state.toStdString()}};
        nlohmann::json &image = isNested ? record["image"] : record;
        image["distro"] = machine.distro.toStdString();
        image["version"] = machine.version.toStdString();
        array.push_back(isNested ? nlohmann::json{{"record", record}} : record);
    }
    return QString::fromStdString(array.dump());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = Fuzzing::text(Fuzzing::bytes(data, size));
    const QList<Machine> ofTable = MachineList::parseMachinesText(text);
    require(ofTable == readSlowly(text), "a table is read by its columns");
    require(MachineList::parseMachinesJson(json(ofTable, false)) == ofTable, "a flat record is read as it was written");

    const std::optional<QList<Machine>> ofJson = MachineList::parseMachinesJson(text);
    if (ofJson) {
        require(text.trimmed().endsWith(u']'), "only an array is a list");
        require(MachineList::parseMachinesJson(json(*ofJson, true)) == ofJson, "a nested record is read as written");
    }
    return 0;
}
