#include "ContentView/Screens/DateText.h"

#include <QLocale>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>

namespace
{

icu::Locale localeNamed(const QByteArray &name)
{
    if (name.isEmpty() || name == "C" || name.startsWith("C.") || name == "POSIX")
        return icu::Locale::getUS();
    const icu::Locale locale = icu::Locale::createCanonical(name.constData());
    return locale.isBogus() ? icu::Locale::getUS() : locale;
}

} // namespace

QString DateText::mediumDateShortTime(const QDateTime &date, const QByteArray &locale)
{
    if (!date.isValid())
        return {};
    const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kMedium, icu::DateFormat::kShort, localeNamed(locale)));
    if (format == nullptr)
        return QLocale().toString(date, QLocale::ShortFormat);
    // The wall clock of the date's own zone, read as if in Greenwich: the two libraries need not agree on zones.
    format->adoptTimeZone(icu::TimeZone::getGMT()->clone());
    icu::UnicodeString text;
    format->format(static_cast<UDate>(date.toMSecsSinceEpoch() + qint64(1000) * date.offsetFromUtc()), text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QByteArray DateText::userLocale()
{
#ifdef Q_OS_MACOS
    return QLocale::system().bcp47Name().toLatin1();
#else
    // QLocale would answer with the language of messages.
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            return value;
    }
    return {};
#endif
}
