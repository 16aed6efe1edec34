#pragma once

#include "ContainerStore/ContainerInfo.h"

#include <QList>
#include <QString>

namespace ContainerList
{

/// Reads `docker ps -a --format '{{json .}}'`: one JSON object a line. A line that is not one, or has no "ID" text, is
/// skipped; a value that is not a text counts as missing. Pure.
QList<ContainerInfo> parseContainers(const QString &text);

} // namespace ContainerList
