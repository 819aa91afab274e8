#pragma once

#include <QtGlobal>

#ifdef Q_OS_WIN
// The other header needs this one before it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on
#include <algorithm>
#include <atomic>
#include <thread>
#else
#include <QByteArray>
#include <QFile>
#endif

/// How much memory this process has taken at most since the object was made, beyond what it had then, in kilobytes.
/// One object at a time.
class MemoryPeak {
public:
#ifdef Q_OS_WIN
    // The system's own account of the peak cannot be begun anew.
    MemoryPeak() : Before(Now()), Highest(Before)
    {
        Watch = std::thread([this] {
            while (!Ended) {
                Highest = std::max<qint64>(Highest, Now());
                Sleep(1);
            }
        });
    }

    ~MemoryPeak()
    {
        Ended = true;
        Watch.join();
    }

    MemoryPeak(const MemoryPeak&) = delete;
    MemoryPeak& operator=(const MemoryPeak&) = delete;

    bool IsKnown() const
    {
        return Before > 0;
    }

    qint64 Kilobytes() const
    {
        return std::max<qint64>(Highest, Now()) - Before;
    }

private:
    static qint64 Now()
    {
        PROCESS_MEMORY_COUNTERS account = {};
        if (K32GetProcessMemoryInfo(GetCurrentProcess(), &account, sizeof account) == 0) return -1;
        return static_cast<qint64>(account.WorkingSetSize / 1024);
    }

    const qint64 Before;
    std::atomic<qint64> Highest;
    std::atomic<bool> Ended = false;
    std::thread Watch;
#else
    MemoryPeak() : Before(Account("VmRSS:"))
    {
        // Begins the account of the highest memory anew.
        if (QFile forget("/proc/self/clear_refs"); forget.open(QIODevice::WriteOnly)) forget.write("5");
    }

    bool IsKnown() const
    {
        return Before > 0;
    }

    qint64 Kilobytes() const
    {
        return Account("VmHWM:") - Before;
    }

private:
    /// A figure of this process from the system's account of it.
    static qint64 Account(const char* name)
    {
        QFile status("/proc/self/status");
        if (!status.open(QIODevice::ReadOnly)) return -1;
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith(name)) return line.mid(qstrlen(name) + 1).trimmed().split(' ').first().toLongLong();
        }
        return -1;
    }

    const qint64 Before;
#endif
};
