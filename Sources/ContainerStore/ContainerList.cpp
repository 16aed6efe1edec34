#include "ContainerStore/ContainerList.h"

#include "Text/JsonText.h"
#include "Text/Utf8.h"

#include <nlohmann/json.hpp>

#include <QStringView>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace
{

using Json = nlohmann::json;

// Reads the six texts while the line is scanned. No tree is built: a line may be megabytes long or a million brackets
// deep, and all but six texts of it are of no use.
class ContainerReader : public nlohmann::json_sax<Json>
{
public:
    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t &) override { return value(); }
    bool binary(binary_t &) override { return value(); }
    bool start_array(std::size_t) override { return open(); }
    bool end_array() override { return close(); }
    bool start_object(std::size_t) override { return open(); }
    bool end_object() override { return close(); }
    bool parse_error(std::size_t, const std::string &, const Json::exception &) override { return false; }

    bool string(string_t &text) override
    {
        value(Utf8::toQString(text));
        return m_depth > 0;
    }

    bool key(string_t &name) override
    {
        if (m_depth == 1)
            m_field = fieldNamed(name);
        return true;
    }

    std::optional<ContainerInfo> container() const
    {
        const QString id = m_texts[0].value_or(QString());
        if (id.isEmpty())
            return std::nullopt;
        const auto text = [this](std::size_t field) { return m_texts[field].value_or(QString()); };
        return ContainerInfo{id, m_texts[1].value_or(id), text(2), text(3), text(4), text(5)};
    }

private:
    static constexpr std::array<std::string_view, 6> fieldNames{"ID", "Names", "Image", "State", "Status", "Ports"};

    static std::optional<std::size_t> fieldNamed(std::string_view name)
    {
        const auto *field = std::ranges::find(fieldNames, name);
        if (field == fieldNames.end())
            return std::nullopt;
        return static_cast<std::size_t>(field - fieldNames.begin());
    }

    // Of a key that occurs twice the last value counts. False ends the reading: a line that is no object, or an array.
    bool value(const std::optional<QString> &text = std::nullopt)
    {
        if (m_depth == 1 && m_field)
            m_texts[*m_field] = text;
        return m_depth > 0;
    }

    bool open()
    {
        value();
        ++m_depth;
        return true;
    }

    bool close()
    {
        --m_depth;
        return true;
    }

    std::size_t m_depth = 0;
    std::optional<std::size_t> m_field;
    std::array<std::optional<QString>, fieldNames.size()> m_texts;
};

std::optional<ContainerInfo> containerIn(QStringView line)
{
    const QByteArray bytes = line.toUtf8();
    ContainerReader reader;
    if (!JsonText::mayBeJson(bytes) || !Json::sax_parse(bytes.begin(), bytes.end(), &reader))
        return std::nullopt;
    return reader.container();
}

} // namespace

QList<ContainerInfo> ContainerList::parseContainers(const QString &text)
{
    QList<ContainerInfo> containers;
    for (const QStringView line : QStringView(text).tokenize(u'\n', Qt::SkipEmptyParts)) {
        if (const std::optional<ContainerInfo> container = containerIn(line))
            containers.append(*container);
    }
    return containers;
}
