#pragma once

#include "shell/options.h"

#include <QAbstractButton>
#include <QAction>
#include <QObject>
#include <QString>

class SettingsStore;

/// The options that shape the names of transferred files, with the menu entries that toggle them.
/// User-interface thread.
class NameOptions final : public QObject {
    Q_OBJECT

public:
    struct Controls {
        QAction& mnuNT;
        QAction& mnuConvertLower;
        QAction& mnuAlarm;
        QAbstractButton& Check2;  ///< "Check for duplicates"
    };

    NameOptions(Controls controls, Options& options, SettingsStore& settings);

    /// The name after the conversions that are switched on: short (8.3) form first, then lower case, each trimmed of
    /// blanks. With the short form on, a name without a local file gives an empty text.
    QString Converted(const QString& name) const;

    /// Whether a file that exists already is asked about.
    bool AsksAboutDuplicates() const;

    void mnuNT_Click();
    void mnuConvertLower_Click();
    void mnuAlarm_Click();
    void Image3_Click();  ///< the picture beside Check2 toggles it

private:
    Controls Form;
    Options& Chosen;
    SettingsStore& Settings;
};
