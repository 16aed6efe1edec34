// What `docker ps` prints: a JSON object a line.

#include "ContainerStore/ContainerList.h"
#include "Fuzzing.h"

#include <nlohmann/json.hpp>

using Fuzzing::require;

namespace
{

using Json = nlohmann::json;

/// The line read as a whole tree, and the six texts taken from that.
QList<ContainerInfo> readAsTree(const QString &line)
{
    const std::string bytes = line.toStdString();
    if (bytes.find('\0') != std::string::npos)
        return {};
    const Json object = Json::parse(bytes, nullptr, false);
    if (!object.is_object())
        return {};
    const auto text = [&object](const char *key, const QString &otherwise) {
        const auto member = object.find(key);
        return member != object.end() && member->is_string()
                   ? Utf8::toQString(member->template get_ref<const std::string &>())
                   : otherwise;
    };
    const QString id = text("ID", {});
    if (id.isEmpty())
        return {};
    return {{id, text("Names", id), text("Image", {}), text("State", {}), text("Status", {}), text("Ports", {})}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = Fuzzing::text(Fuzzing::bytes(data, size));
    const QList<ContainerInfo> all = ContainerList::parseContainers(text);
    QList<ContainerInfo> expected;
    for (const QString &line : text.split(u'\n'))
        expected += readAsTree(line);
    require(all == expected, "each line is read by itself, and for its six texts");
    return 0;
}
