#pragma once

#include "base/run_time_error.h"
#include "session/transfer_state.h"
#include "shell/connection_values.h"
#include "shell/options.h"
#include "sites/address_box.h"

#include <QString>
#include <cstdint>

/// What start-up finds out and later parts of the program use.
struct StartValues {
    QString StartFolder;                ///< the local panel opens on it
    QString ExitFolder;                 ///< stored at shut-down for the next start
    QString LineBreak;                  ///< carriage return and line feed, for texts of several lines
    QString InfoFilePath;               ///< TolvInfo.dta in the program's folder
    std::int16_t MessageCounter = 0;    ///< starts since the last message check, 0 to 4
    bool MessageDue = false;            ///< this is the fifth of them
    std::int32_t NormalFormHeight = 0;  ///< of the window without the command line, in twips
};

/// The values of the whole program, created by its entry. User-interface thread.
struct ProgramValues {
    Options Chosen;
    ConnectionValues Connection;
    TransferState Transfer;
    StartValues Start;
    AddressState Address;
    QString InputText;        ///< the answer of the text input dialog
    bool ViewerOpen = false;  ///< the picture viewer follows the local list
    ErrorRecord Errors;
};
