#include "i18n/text_table.h"

// clang-format off
constexpr TextTable SwedishTexts{
    /*  0 */ "&Alternativ",
    /*  1 */ "Övervaka U&rklipp",
    /*  2 */ "Visa &kommandoraden",
    /*  3 */ "Konvertera till korta &filnamn",
    /*  4 */ "Konvertera först till &gemener",
    /*  5 */ "&Spara all information",
    /*  6 */ "Kom ihåg senaste &mappen",
    /*  7 */ "&UNIX",
    /*  8 */ "&Avsluta",
    /*  9 */ "&Protokoll",
    /* 10 */ "&Standard",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "Sä&ker HTTP",
    /* 14 */ "&Meddelanden",
    /* 15 */ "&Sök efter meddelanden eller uppdateringar",
    /* 16 */ "&Hjälp",
    /* 17 */ "&Hjälp",
    /* 18 */ "&Om Tolvane",
    /* 19 */ "&Varför gratis?",
    /* 20 */ "Filer på servern",
    /* 21 */ "Dina filer",
    /* 22 */ "Dina mappar",
    /* 23 */ "Dubbelklicka för att byta mapp.",
    /* 24 */ "Status:",
    /* 25 */ "Ledigt utrymme:",
    /* 26 */ "Kommandorad:",
    /* 27 */ "Ange FTP-serverns URL här:",
    /* 28 */ "Kör",
    /* 29 */ "Port:",
    /* 30 */ "Användare:",
    /* 31 */ "Lösenord:",
    /* 32 */ "Åtkomsttyp:",
    /* 33 */ "Proxy:",
    /* 34 */ "Tidsgräns:",
    /* 35 */ "Koppla från när allt är klart",
    /* 36 */ "Dra och släpp filer",
    /* 37 */ "Ange en URL och klicka på Kör",
    /* 38 */ "&WWW",
    /* 39 */ "&Stäng",
    /* 40 */ "A&nslut",
    /* 41 */ "&Koppla från",
    /* 42 */ "Filter",
    /* 43 */ "Välj ett språk.",
    /* 44 */ "Du kan byta språk senare om du vill.",
    /* 45 */ "S&pråk",
    /* 46 */ "Standard",
    /* 47 */ "Ta bort markerad mapp",
    /* 48 */ "Skapa ny mapp",
    /* 49 */ "Filstorlek",
    /* 50 */ "Ta bort markerad fil",
    /* 51 */ "Byt namn på markerad fil",
    /* 52 */ "Läs markerad textfil",
    /* 53 */ "Upp en nivå",
    /* 54 */ "Klistra in från Urklipp",
    /* 55 */ "Ta bort URL-listan och lösenorden",
    /* 56 */ "Använd standardport",
    /* 57 */ "Ange proxyadressen här",
    /* 58 */ "Anslut till FTP-servern",
    /* 59 */ "Koppla från FTP-servern",
    /* 60 */ "Klicka för att TA EMOT filer från FTP-servern",
    /* 61 */ "Klicka för att SKICKA filer till FTP-servern",
    /* 62 */ "Visa markerad fil",
    /* 63 */ "Ledigt utrymme på hårddisken",
    /* 64 */ "Besök Quorvells webbplats!",
    /* 65 */ "Stoppur",
    /* 66 */ "Pausa",
    /* 67 */ "Nollställ",
    /* 68 */ "Avsluta Tolvane",
    /* 69 */ "Klistra in från Urklipp",
    /* 70 */ "Anslut till FTP-servern",
    /* 71 */ "Nytt lösenord",
    /* 72 */
    "Håll ned SKIFT eller CTRL för att markera flera filer och dra dem sedan med HÖGER MUSKNAPP till "
    "fönstret [Dina filer]. \n"
    "Ange FTP-adressen i URL-rutan. Exempel: ftp: \n"
    "Lösenord – Anger lösenordet som skickas när du loggar in på fjärrdatorer. \n"
    "Användare – Anger namnet som skickas med förfrågningar till fjärrdatorer. Om fältet lämnas tomt "
    "skickas standardanvändarnamnet anonymous. Klicka på Anslut när du är redo att ansluta till "
    "FTP-servern. Om du vill SKICKA eller TA EMOT filer drar du dem bara till eller från FTP-servern. Om "
    "du vill gå upp en nivå klickar du på mappknappen ovanför fönstret med FTP-serverns filer. Klicka på "
    "textknappen om du vill läsa textfiler på FTP-servern. SÄKERHET: Lösenorden sparas så att det blir "
    "enklare att växla mellan olika servrar. Vid behov kan du ta bort dem med raderingsknappen efter "
    "varje session. \n"
    "Med kommandoraden kan du samtidigt hämta ytterligare en fil från en annan plats. Ange en "
    "fullständig URL inklusive filnamn.",
    /* 73 */ "Prova Quorvell Paperbird, vårt kostnadsfria anteckningsprogram för datorn. Klicka för att hämta.",
    /* 74 */ "Ta bort markerad URL?",
    /* 75 */ "Ta bort URL?",
    /* 76 */ "Kontrollera om det finns dubbletter",
};
// clang-format on

static_assert(SwedishTexts.back() != nullptr, "a text is missing");
