#pragma once

#include <QObject>
#include <QString>
#include <functional>

class Asker;
class ErrorRecord;
class Language;

/// The help menu's texts: the short help with the way to the manual, and why the program is free.
/// User-interface thread.
class HelpPages final : public QObject {
    Q_OBJECT

public:
    struct Tools {
        const Language& Texts;
        Asker& Questions;
        ErrorRecord& Errors;
        QString ProgramFolder;
        std::function<qint64(const QString& path)> OpenTextEditor;  ///< as platform/text_editor.h
    };

    explicit HelpPages(Tools tools);

    void mnuHelp2_Click();
    void mnuFree_Click();

private:
    void ShowManual();

    Tools Use;
};
