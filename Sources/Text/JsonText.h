#pragma once

#include "Text/Utf8Text.h"

#include <QString>

#include <optional>
#include <string>

/// The member `key` of a JSON object as a text; nothing when it is missing or anything else than a text.
template <typename Json>
std::optional<QString> textMember(const Json &object, const char *key)
{
    const auto member = object.find(key);
    if (member == object.end() || !member->is_string())
        return std::nullopt;
    return textFromUtf8(member->template get_ref<const std::string &>());
}
