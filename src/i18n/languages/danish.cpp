#include "i18n/text_table.h"

// clang-format off
constexpr TextTable DanishTexts{
    /*  0 */ "&Indstillinger",
    /*  1 */ "&Overvåg udklipsholderen",
    /*  2 */ "Vis &kommandolinje",
    /*  3 */ "Konverter til korte &filnavne",
    /*  4 */ "Konverter først til små &bogstaver",
    /*  5 */ "&Gem alle oplysninger",
    /*  6 */ "&Husk seneste mappe",
    /*  7 */ "&UNIX",
    /*  8 */ "&Afslut",
    /*  9 */ "&Protokol",
    /* 10 */ "&Standard",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "S&ikker HTTP",
    /* 14 */ "&Meddelelser",
    /* 15 */ "&Søg efter meddelelser eller opdateringer",
    /* 16 */ "&Hjælp",
    /* 17 */ "&Hjælp",
    /* 18 */ "&Om Tolvane",
    /* 19 */ "H&vorfor gratis?",
    /* 20 */ "Filer på serveren",
    /* 21 */ "Dine filer",
    /* 22 */ "Dine mapper",
    /* 23 */ "Dobbeltklik for at skifte mappe.",
    /* 24 */ "Status:",
    /* 25 */ "Ledig plads:",
    /* 26 */ "Kommandolinje:",
    /* 27 */ "Skriv FTP-serverens URL her:",
    /* 28 */ "Kør",
    /* 29 */ "Port:",
    /* 30 */ "Bruger-id:",
    /* 31 */ "Adgangskode:",
    /* 32 */ "Adgangstype:",
    /* 33 */ "Proxy:",
    /* 34 */ "Timeout:",
    /* 35 */ "Afbryd efter overførsel",
    /* 36 */ "Træk og slip filer",
    /* 37 */ "Skriv en URL, og klik på Kør",
    /* 38 */ "&WWW",
    /* 39 */ "&Afslut",
    /* 40 */ "&Forbind",
    /* 41 */ "Af&bryd",
    /* 42 */ "Filter",
    /* 43 */ "Vælg et sprog.",
    /* 44 */ "Du kan altid skifte sprog senere.",
    /* 45 */ "&Sprog",
    /* 46 */ "Standard",
    /* 47 */ "Slet den markerede mappe",
    /* 48 */ "Opret ny mappe",
    /* 49 */ "Filstørrelse",
    /* 50 */ "Slet den markerede fil",
    /* 51 */ "Omdøb den markerede fil",
    /* 52 */ "Læs den markerede tekstfil",
    /* 53 */ "Gå et niveau op",
    /* 54 */ "Indsæt fra udklipsholderen",
    /* 55 */ "Slet URL-listen og adgangskoderne",
    /* 56 */ "Brug standardport",
    /* 57 */ "Skriv proxyadressen her",
    /* 58 */ "Opret forbindelse til FTP-serveren",
    /* 59 */ "Afbryd forbindelsen",
    /* 60 */ "Klik for at MODTAGE filer fra FTP-serveren",
    /* 61 */ "Klik for at SENDE filer til FTP-serveren",
    /* 62 */ "Vis den markerede fil",
    /* 63 */ "Ledig plads på harddisken",
    /* 64 */ "Besøg Quorvells hjemmeside!",
    /* 65 */ "Stopur",
    /* 66 */ "Pause",
    /* 67 */ "Nulstil",
    /* 68 */ "Afslut Tolvane",
    /* 69 */ "Indsæt fra udklipsholderen",
    /* 70 */ "Opret forbindelse til FTP-serveren",
    /* 71 */ "Ny adgangskode",
    /* 72 */
    "Hold SKIFT- eller CTRL-tasten nede for at markere flere filer, og træk dem derefter med HØJRE "
    "MUSEKNAP til vinduet [Dine filer]. \n"
    "Skriv FTP-adressen i URL-feltet. Eksempel: ftp: \n"
    "Adgangskode – Angiver den adgangskode, der sendes, når du logger på fjerncomputere. \n"
    "Bruger-id – Angiver det navn, der sendes med anmodninger til fjerncomputere. Hvis feltet er tomt, "
    "sendes standardbrugernavnet anonymous. Klik på Forbind, når du er klar til at oprette forbindelse "
    "til FTP-serveren. Hvis du vil SENDE eller MODTAGE filer, skal du blot trække dem til eller fra "
    "FTP-serveren. Klik på mappeknappen over vinduet med FTP-serverens filer for at gå et niveau op. "
    "Klik på tekstknappen for at læse tekstfiler på FTP-serveren. SIKKERHED: Adgangskoderne gemmes, så "
    "det bliver nemmere at skifte fra én server til en anden. Slet dem om nødvendigt med sletteknappen "
    "efter hver session. \n"
    "Brug kommandolinjen til samtidig at hente endnu en fil fra et andet sted. Skriv den fulde URL "
    "inklusive filnavn.",
    /* 73 */ "Prøv Quorvell Paperbird, vores gratis notesprogram til skrivebordet. Klik for at hente det.",
    /* 74 */ "Slet den markerede URL?",
    /* 75 */ "Slet URL?",
    /* 76 */ "Kontroller, om der er dubletter",
};
// clang-format on

static_assert(DanishTexts.back() != nullptr, "a text is missing");
