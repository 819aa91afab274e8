#pragma once

#include <QString>
#include <atomic>

/// The file that a download becomes. The bytes arrive in a hidden file beside it, which takes its place when they are
/// all there: whatever goes wrong before leaves the old file as it was.

/// Whether a name can be that of a file in one given folder, on this system.
bool IsFileName(const QString& name);

/// A hidden file in a folder, with a name that no other download of any running program has. It is not made.
QString HiddenFile(const QString& folder);

/// Gives a hidden file another name, so that nobody else knows it. Empty when it is not there or cannot be renamed.
QString TakeOver(const QString& hidden);

/// Removes a hidden file, if it is there.
void Discard(const QString& hidden);

/// Puts the hidden file in the place of the target, as if its bytes had been written over the target from its first
/// byte on: what an old, longer file holds beyond them stays. Returns a plain sentence when that is not possible, or
/// nothing. The hidden file is gone afterwards in any case. It may take as long as copying the old file's end takes,
/// and gives up soon after `stop` has been set. Any thread.
QString LayOver(const QString& hidden, const QString& target, const std::atomic<bool>& stop);
