#pragma once

#include <QtGlobal>
#ifdef Q_OS_WIN
// The other header needs this one before it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on
#else
#include <QFile>
#endif

/// How many bytes of the computer's memory this process takes up; 0 when the system does not tell.
inline qint64 MemoryInUse()
{
#ifdef Q_OS_WIN
    PROCESS_MEMORY_COUNTERS counters = {};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0) return 0;
    return static_cast<qint64>(counters.WorkingSetSize);
#else
    QFile file("/proc/self/statm");
    if (!file.open(QIODevice::ReadOnly)) return 0;
    return file.readAll().split(' ').value(1).toLongLong() * 4096;
#endif
}
