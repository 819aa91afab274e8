#pragma once

#include <QtGlobal>
#include <algorithm>

/// How many files a test makes in one folder that wants this many. Wine looks through the whole folder for each new
/// name, whatever its case, so that twice as many take four times as long.
constexpr int ThisManyFiles([[maybe_unused]] int wanted)
{
#ifdef Q_OS_WIN
    return std::min(wanted, 1'000);
#else
    return wanted;
#endif
}
