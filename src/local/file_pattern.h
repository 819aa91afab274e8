#pragma once

#include <QString>
#include <QStringList>

/// Which names a file list shows: one or several patterns joined by ";", with "*" for any run of characters and "?"
/// for one. Case does not count; "*.*" matches names without a dot too; an empty pattern matches every name.
/// Any thread.
class FilePattern {
public:
    explicit FilePattern(const QString& patterns = QStringLiteral("*.*"));

    bool Matches(const QString& name) const;

    /// The patterns as they were given.
    const QString& Text() const { return Given; }

private:
    QString Given;
    QStringList Patterns;  ///< folded to one case; empty when every name matches
};
