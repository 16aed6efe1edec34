#pragma once

#include "Text/Utf8.h"

#include <QString>

#include <optional>
#include <string>

namespace JsonText
{

/// The member `key` of a JSON object as a text; nothing when it is missing or anything else than a text.
template <typename Json>
std::optional<QString> member(const Json &object, const char *key)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return std::nullopt;
    return Utf8::toQString(found->template get_ref<const std::string &>());
}

} // namespace JsonText
