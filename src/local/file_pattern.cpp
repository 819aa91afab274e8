#include "local/file_pattern.h"

#include "base/conversions.h"

namespace {

/// Matches a folded name against one folded pattern, in time proportional to both lengths multiplied at worst.
bool MatchesOne(QStringView name, QStringView pattern)
{
    qsizetype at = 0;
    qsizetype wanted = 0;
    qsizetype star = -1;   // position of the last "*" passed in the pattern
    qsizetype resume = 0;  // where in the name that "*" is tried to end next
    while (at < name.size()) {
        if (wanted < pattern.size() && pattern[wanted] == u'*') {
            star = wanted++;
            resume = at;
        } else if (wanted < pattern.size() && pattern[wanted] == u'?') {
            const bool pair = name[at].isHighSurrogate() && at + 1 < name.size() && name[at + 1].isLowSurrogate();
            at += pair ? 2 : 1;
            ++wanted;
        } else if (wanted < pattern.size() && pattern[wanted] == name[at]) {
            ++at;
            ++wanted;
        } else if (star >= 0) {
            wanted = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    while (wanted < pattern.size() && pattern[wanted] == u'*') ++wanted;
    return wanted == pattern.size();
}

}  // namespace

FilePattern::FilePattern(const QString& patterns) : Given(patterns)
{
    for (const QString& part : patterns.split(u';', Qt::SkipEmptyParts)) {
        const QString pattern = Trimmed(part).toCaseFolded();
        if (pattern.isEmpty()) continue;
        if (pattern == u"*.*" || pattern == u"*") {
            Patterns.clear();
            return;
        }
        Patterns += pattern;
    }
}

bool FilePattern::Matches(const QString& name) const
{
    if (Patterns.isEmpty()) return true;
    const QString folded = name.toCaseFolded();
    for (const QString& pattern : Patterns)
        if (MatchesOne(folded, pattern)) return true;
    return false;
}
