#include "ContentView/Screens/DateText.h"

#include <QLocale>
#include <QRegularExpression>

#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>
#include <string>

using namespace Qt::StringLiterals;

namespace
{

icu::Locale localeNamed(const QByteArray &name)
{
    if (name.isEmpty() || name == "C" || name.startsWith("C.") || name == "POSIX")
        return icu::Locale::getUS();
    const icu::Locale locale = icu::Locale::createCanonical(name.constData());
    return locale.isBogus() ? icu::Locale::getUS() : locale;
}

bool has24Hours(const icu::UnicodeString &pattern)
{
    bool isQuoted = false;
    for (int at = 0; at < pattern.length(); ++at) {
        const char16_t character = pattern[at];
        isQuoted = isQuoted != (character == u'\'');
        if (!isQuoted && (character == u'H' || character == u'k'))
            return true;
    }
    return false;
}

/// Gives the format the hour cycle that the locale's keyword asks for. Releases of ICU differ in whether they have done
/// so themselves.
void applyHourCycle(icu::DateFormat &format, const icu::Locale &locale)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto keyword = locale.getKeywordValue<std::string>("hours", status);
    const std::unique_ptr<icu::DateFormat> time(icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
    auto *whole = dynamic_cast<icu::SimpleDateFormat *>(&format);
    const auto *part = dynamic_cast<icu::SimpleDateFormat *>(time.get());
    if (U_FAILURE(status) || whole == nullptr || part == nullptr)
        return;
    const bool wants24Hours = keyword.starts_with("h2");
    icu::UnicodeString timePattern;
    part->toPattern(timePattern);
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    if (keyword.empty() || has24Hours(timePattern) == wants24Hours || U_FAILURE(status))
        return;
    icu::UnicodeString pattern;
    whole->toPattern(pattern);
    const icu::UnicodeString wanted = generator->getBestPattern(wants24Hours ? u"Hmm" : u"hmm", status);
    if (U_SUCCESS(status))
        whole->applyPattern(pattern.findAndReplace(timePattern, wanted));
}

} // namespace

QByteArray DateText::withHourCycle(const QByteArray &locale, const QString &timeFormat)
{
    // Letters between quotes are text; "a" and "AP" stand for the half of the day.
    static const QRegularExpression quoted(u"'[^']*'"_s);
    const bool has12Hours = QString(timeFormat).remove(quoted).contains(u'a', Qt::CaseInsensitive);
    return locale + (has12Hours ? "@hours=h12" : "@hours=h23");
}

QString DateText::mediumDateShortTime(const QDateTime &date, const QByteArray &locale)
{
    if (!date.isValid())
        return {};
    const icu::Locale known = localeNamed(locale);
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kShort, known));
    if (format == nullptr)
        return QLocale().toString(date, QLocale::ShortFormat);
    applyHourCycle(*format, known);
    // The wall clock of the date's own zone, read as if in Greenwich: the two libraries need not agree on zones.
    format->adoptTimeZone(icu::TimeZone::getGMT()->clone());
    icu::UnicodeString text;
    format->format(static_cast<UDate>(date.toMSecsSinceEpoch() + qint64(1000) * date.offsetFromUtc()), text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QByteArray DateText::userLocale()
{
#ifdef Q_OS_MACOS
    // The names of locales do not know of the system's switch for 24 hours, but the system's own format does.
    const QLocale system = QLocale::system();
    return withHourCycle(system.bcp47Name().toLatin1(), system.timeFormat(QLocale::ShortFormat));
#else
    // QLocale would answer with the language of messages.
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QByteArray value = qgetenv(variable); !value.isEmpty())
            return value;
    }
    return {};
#endif
}
