#pragma once

#include "base/formats.h"
#include "support/panel_driver.h"

#include <initializer_list>
#include <memory>
#include <optional>

/// The main window with answers prepared for what the operations on the server ask. User-interface thread.
class OperationsBench {
protected:
    void SetUp()
    {
        Driver = std::make_unique<PanelDriver>();
        Driver->Open();
    }

    void TearDown() { Driver.reset(); }

    void Type(const std::optional<QString>& answer) { Driver->Prompt->Answers.push_back(answer); }

    void Answering(std::initializer_list<Answer> answers) { Driver->Questions.Answers.assign(answers); }

    /// The lines of the log that say this and nothing else before their stamp.
    int Logged(const QString& text) const
    {
        const QString line = Stamped(text, GeneralDateTime(Driver->Now));
        return static_cast<int>(Driver->Log().count(line));
    }

    static void ConnectWith(PanelDriver& driver, const QStringList& lines, int chosen = 0)
    {
        driver.Connect(lines);
        if (!lines.isEmpty()) PanelDriver::LeftClick(driver.Remote(), chosen);
        driver.Beeps = 0;
    }

    static bool IsNormalPointer() { return QGuiApplication::overrideCursor() == nullptr; }

    static constexpr auto Hint = "You must have file privileges!";

    std::unique_ptr<PanelDriver> Driver;
};
