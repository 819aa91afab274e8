#include "i18n/text_table.h"

// clang-format off
constexpr TextTable GermanTexts{
    /*  0 */ "&Optionen",
    /*  1 */ "&Zwischenablage überwachen",
    /*  2 */ "B&efehlszeile anzeigen",
    /*  3 */ "In kurze &Dateinamen umwandeln",
    /*  4 */ "Zuerst in &Kleinbuchstaben umwandeln",
    /*  5 */ "&Alle Angaben speichern",
    /*  6 */ "&Letzten Ordner merken",
    /*  7 */ "&UNIX",
    /*  8 */ "&Beenden",
    /*  9 */ "&Protokoll",
    /* 10 */ "&Standard",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "Si&cheres HTTP",
    /* 14 */ "&Nachrichten",
    /* 15 */ "&Nach Updates oder Nachrichten suchen",
    /* 16 */ "&Hilfe",
    /* 17 */ "&Hilfe",
    /* 18 */ "&Info",
    /* 19 */ "&Warum kostenlos?",
    /* 20 */ "Serverdateien",
    /* 21 */ "Ihre Dateien",
    /* 22 */ "Ihre Ordner",
    /* 23 */ "Ordner per Doppelklick wechseln.",
    /* 24 */ "Status:",
    /* 25 */ "Freier Speicherplatz:",
    /* 26 */ "Befehlszeile:",
    /* 27 */ "URL des FTP-Servers eingeben:",
    /* 28 */ "Los",
    /* 29 */ "Port:",
    /* 30 */ "Benutzer:",
    /* 31 */ "Kennwort:",
    /* 32 */ "Zugriffsart:",
    /* 33 */ "Proxy:",
    /* 34 */ "Zeitlimit:",
    /* 35 */ "Nach Abschluss trennen",
    /* 36 */ "Dateien ziehen und ablegen",
    /* 37 */ "URL eingeben und auf „Los“ klicken",
    /* 38 */ "&WWW",
    /* 39 */ "&Ende",
    /* 40 */ "&Verbinden",
    /* 41 */ "&Trennen",
    /* 42 */ "Filter",
    /* 43 */ "Bitte wählen Sie eine Sprache.",
    /* 44 */ "Sie können die Sprache jederzeit ändern.",
    /* 45 */ "&Sprache",
    /* 46 */ "Standard",
    /* 47 */ "Markierten Ordner löschen",
    /* 48 */ "Neuen Ordner erstellen",
    /* 49 */ "Dateigröße",
    /* 50 */ "Markierte Datei löschen",
    /* 51 */ "Markierte Datei umbenennen",
    /* 52 */ "Markierte Textdatei lesen",
    /* 53 */ "Eine Ebene nach oben",
    /* 54 */ "Aus der Zwischenablage einfügen",
    /* 55 */ "URL-Liste und Kennwörter löschen",
    /* 56 */ "Standardport eintragen",
    /* 57 */ "Proxyadresse hier eingeben",
    /* 58 */ "Mit dem FTP-Server verbinden",
    /* 59 */ "Verbindung trennen",
    /* 60 */ "Klicken, um Dateien vom FTP-Server zu EMPFANGEN",
    /* 61 */ "Klicken, um Dateien an den FTP-Server zu SENDEN",
    /* 62 */ "Markierte Datei anzeigen",
    /* 63 */ "Freier Speicherplatz auf Ihrer Festplatte",
    /* 64 */ "Besuchen Sie die Website von Quorvell!",
    /* 65 */ "Stoppuhr",
    /* 66 */ "Pause",
    /* 67 */ "Zurücksetzen",
    /* 68 */ "Tolvane beenden",
    /* 69 */ "Aus der Zwischenablage einfügen",
    /* 70 */ "Mit dem FTP-Server verbinden",
    /* 71 */ "Neues Kennwort",
    /* 72 */
    "Halten Sie die UMSCHALT- oder STRG-Taste gedrückt, um mehrere Dateien auszuwählen, und ziehen Sie "
    "sie dann mit gedrückter RECHTER MAUSTASTE in das Fenster [Ihre Dateien]. \n"
    "Geben Sie die FTP-Adresse in das URL-Feld ein. Beispiel: ftp: \n"
    "Kennwort – Legt fest, welches Kennwort bei der Anmeldung an Remotecomputern gesendet wird. \n"
    "Benutzer – Legt fest, welcher Name mit Anfragen an Remotecomputer gesendet wird. Wenn Sie dieses "
    "Feld leer lassen, wird der Standardbenutzername „anonymous“ gesendet. Klicken Sie auf „Verbinden“, "
    "sobald Sie die Verbindung zum FTP-Server herstellen möchten. Um Dateien zu SENDEN oder zu "
    "EMPFANGEN, ziehen Sie sie einfach mit der Maus auf den FTP-Server oder von dort in einen Ihrer "
    "Ordner. Um eine Ordnerebene nach oben zu wechseln, klicken Sie auf die Ordnerschaltfläche über dem "
    "Fenster des FTP-Servers. Um Textdateien auf dem FTP-Server zu lesen, klicken Sie auf die "
    "Textschaltfläche. SICHERHEIT: Die Kennwörter werden gespeichert, damit Sie leichter von einem "
    "Server zum anderen wechseln können. Bei Bedarf können Sie sie nach jeder Sitzung mit der "
    "Löschschaltfläche entfernen. \n"
    "Über die Befehlszeile können Sie gleichzeitig eine weitere Datei von einem anderen Ort "
    "herunterladen. Geben Sie dazu die vollständige URL samt Dateinamen ein.",
    /* 73 */ "Testen Sie Quorvell Paperbird, unser kostenloses Desktop-Notizbuch. Klicken Sie zum Herunterladen.",
    /* 74 */ "Markierte URL löschen?",
    /* 75 */ "URL löschen?",
    /* 76 */ "Auf Duplikate prüfen",
};
// clang-format on

static_assert(GermanTexts.back() != nullptr, "a text is missing");
