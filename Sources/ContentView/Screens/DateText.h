#pragma once

#include <QDateTime>
#include <QString>

/// Writes dates for a reader: a medium date with a short time, in the way of a language and region.
namespace DateText
{

/// `locale` with the hour cycle, 12 or 24 hours, of a short time in Qt's notation ("h:mm AP").
QByteArray withHourCycle(const QByteArray &locale, const QString &timeFormat);

/// The date and time as `locale` ("de_DE", "en-GB@hours=h12", "ar_EG.UTF-8") writes them, in the time zone that `date`
/// carries. Empty for an invalid date.
QString mediumDateShortTime(const QDateTime &date, const QByteArray &locale);

/// The user's choice of language and region for dates.
QByteArray userLocale();

} // namespace DateText
