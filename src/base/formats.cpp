#include "base/formats.h"

#include <QLocale>

QString Thousands(qint64 number)
{
    QLocale locale = QLocale::system();
    locale.setNumberOptions(QLocale::DefaultNumberOptions);
    return locale.toString(number);
}

QString GeneralDateTime(const QDateTime& moment)
{
    return QLocale::system().toString(moment.date(), QLocale::ShortFormat) + u' ' + TimeOfDay(moment);
}

QString TimeOfDay(const QDateTime& moment)
{
    // The locale's long form ends in the time zone, its short form lacks the seconds: the long one without the zone.
    QString form = QLocale::system().timeFormat(QLocale::LongFormat);
    form.remove(u't');
    return QLocale::system().toString(moment.time(), form.trimmed());
}

QString Stamped(const QString& text, const QString& stamp)
{
    return text + QString(8, u' ') + stamp;
}
