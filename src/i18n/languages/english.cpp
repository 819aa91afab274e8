#include "i18n/text_table.h"

// clang-format off
constexpr TextTable EnglishTexts{
    /*  0 */ "&Options",
    /*  1 */ "&Watch clipboard",
    /*  2 */ "Add command &line",
    /*  3 */ "Convert to &short file names",
    /*  4 */ "Convert to &lower case first",
    /*  5 */ "&Save all information",
    /*  6 */ "Save last &folder",
    /*  7 */ "&UNIX",
    /*  8 */ "&Exit",
    /*  9 */ "&Protocol",
    /* 10 */ "&Default",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "&Secure HTTP",
    /* 14 */ "&Msg",
    /* 15 */ "&Check for message or update.",
    /* 16 */ "&Help",
    /* 17 */ "&Help",
    /* 18 */ "&About",
    /* 19 */ "&Why free?",
    /* 20 */ "FTP Site Files",
    /* 21 */ "Your Files",
    /* 22 */ "Your Folders",
    /* 23 */ "Double Click to change folders.",
    /* 24 */ "Status:",
    /* 25 */ "Space Available:",
    /* 26 */ "Command Line:",
    /* 27 */ "Enter the FTP's URL Here:",
    /* 28 */ "Go",
    /* 29 */ "Port:",
    /* 30 */ "User ID:",
    /* 31 */ "Password:",
    /* 32 */ "Access Type:",
    /* 33 */ "Proxy:",
    /* 34 */ "Timeout:",
    /* 35 */ "Disconnect when done.",
    /* 36 */ "Drag and Drop Files",
    /* 37 */ "Enter URL and click on go",
    /* 38 */ "&WWW",
    /* 39 */ "&Exit",
    /* 40 */ "&Connect",
    /* 41 */ "&Disconnect",
    /* 42 */ "Filter",
    /* 43 */ "Please select a language.",
    /* 44 */ "You can re-select later if needed.",
    /* 45 */ "&Language",
    /* 46 */ "Default",
    /* 47 */ "Erase Highlighted Folder",
    /* 48 */ "Create New Folder",
    /* 49 */ "File Size",
    /* 50 */ "Erase Highlighted File",
    /* 51 */ "Rename Highlighted File",
    /* 52 */ "Read Highlighted Text File",
    /* 53 */ "Move up a Folder",
    /* 54 */ "Paste from clipboard",
    /* 55 */ "Erase URL list and passwords",
    /* 56 */ "Set Default Port",
    /* 57 */ "Enter proxy address here",
    /* 58 */ "Connect to FTP site",
    /* 59 */ "Hang Up",
    /* 60 */ "Click to RECEIVE files from FTP site",
    /* 61 */ "Click to SEND files to FTP site",
    /* 62 */ "View highlighted file",
    /* 63 */ "Space available on your hard drive",
    /* 64 */ "Go to Quorvell's web site!",
    /* 65 */ "Stopwatch",
    /* 66 */ "Pause",
    /* 67 */ "Reset",
    /* 68 */ "Exit Tolvane",
    /* 69 */ "Paste from clipboard",
    /* 70 */ "Connect to FTP site",
    /* 71 */ "New Password",
    /* 72 */
    "Use the SHIFT or CTRL key to select more then one file, then drag them with RIGHT MOUSE click to "
    "the [Your Files] window. \n"
    "Enter in the FTP address in the URL box. Example:  ftp: \n"
    "Password - Sets the password that will be sent with the request to log on to remote computers. \n"
    "User Name - Sets the name that will be sent with requests to remote computers. If this is left "
    "blank, a default user name anonymous is sent. Click on Connect when you're ready to connect to the "
    "ftp site. To SEND/RECEIVE files, just drag and drop the files to and from the ftp site. To move up "
    "a directory, click on the folder button above the ftp site window. Click on the text button to read "
    "text files on the ftp site. SECURITY: The passwords are saved to make it easier to move from one "
    "site to another. Use the erase button after each session to erase passwords if needed. \n"
    "Use the command line to download another file at a different location, at the same time. Enter "
    "complete URL address and file name.",
    /* 73 */ "Try Quorvell Paperbird, our free desktop notebook. Click to download it.",
    /* 74 */ "Erase highlighted URL?",
    /* 75 */ "Erase URL?",
    /* 76 */ "Check for duplicates",
};
// clang-format on

static_assert(EnglishTexts.back() != nullptr, "a text is missing");
