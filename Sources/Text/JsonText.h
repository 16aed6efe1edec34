#pragma once

#include "Text/Utf8.h"

#include <QByteArrayView>
#include <QString>

#include <optional>
#include <string>

namespace JsonText
{

/// The JSON reader takes a NUL for the end of its text and would ignore what goes on behind it: such a text is no JSON.
inline bool mayBeJson(QByteArrayView text)
{
    return !text.contains('\0');
}

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
