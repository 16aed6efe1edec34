#pragma once

#include <QString>
#include <QUtf8StringView>

/// The text as a QString, a leading U+FEFF included, which QString::fromUtf8 and toString would drop.
QString textFromUtf8(QUtf8StringView text);
