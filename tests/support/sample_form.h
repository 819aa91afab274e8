#pragma once

#include "controls/covered_area.h"
#include "ui_main_window.h"

#include <QMainWindow>
#include <memory>

/// The main window's form on its own, without the program behind it. User-interface thread.
class SampleForm : public QMainWindow, public Ui::Tolvane {
public:
    static constexpr QSize FullSize{960, 571};

    SampleForm();

    /// As high as it is with the command line.
    void UncoverCommandLine();
    void ShowStopwatch();
    void ShowLog();
    /// As it looks in the middle of a session.
    void FillIn();

private:
    std::unique_ptr<CoveredArea> Area;
};
