#pragma once

// What may be typed as names, images, ports and packages, said a second time and without patterns: what the
// application lets through is compared with this.

#include <QString>
#include <QStringList>

namespace NameRules
{

/// One lower-case letter or digit, then at most 30 of these and dashes.
bool isMachineName(const QString &name);

/// Why `docker run` is refused; empty when it is not.
QString refusalOfContainer(const QString &image, const QString &name, const QString &ports);

/// At least one package, parted by blanks and commas, and each one a package's name.
bool arePackages(const QString &text);

/// The pieces between blanks and commas.
QStringList pieces(const QString &text);

} // namespace NameRules
