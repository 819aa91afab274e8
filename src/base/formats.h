#pragma once

#include <QDateTime>
#include <QString>

/// How numbers, dates and times are written for the user. Pure but for the system's locale; any thread.

/// A whole number with the locale's thousands separators; 0 is "0".
QString Thousands(qint64 number);

/// The system's general date-time form: short date, a blank, time of day to the second.
QString GeneralDateTime(const QDateTime& moment);

/// The time of day to the second.
QString TimeOfDay(const QDateTime& moment);

/// A text, eight blanks and a stamp: the form of a log line that records an event.
QString Stamped(const QString& text, const QString& stamp);
