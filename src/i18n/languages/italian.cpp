#include "i18n/text_table.h"

// clang-format off
constexpr TextTable ItalianTexts{
    /*  0 */ "&Opzioni",
    /*  1 */ "Monitora gli &Appunti",
    /*  2 */ "Mostra la &riga di comando",
    /*  3 */ "Converti in &nomi di file brevi",
    /*  4 */ "Converti prima in &minuscolo",
    /*  5 */ "&Salva tutte le informazioni",
    /*  6 */ "Ricorda l'ultima &cartella",
    /*  7 */ "&UNIX",
    /*  8 */ "&Esci",
    /*  9 */ "&Protocollo",
    /* 10 */ "&Predefinito",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "HTTP &sicuro",
    /* 14 */ "&Messaggi",
    /* 15 */ "&Cerca messaggi o aggiornamenti",
    /* 16 */ "&Guida",
    /* 17 */ "&Guida",
    /* 18 */ "&Informazioni su Tolvane",
    /* 19 */ "&Perché è gratuito?",
    /* 20 */ "File del sito FTP",
    /* 21 */ "I tuoi file",
    /* 22 */ "Le tue cartelle",
    /* 23 */ "Fai doppio clic per cambiare cartella.",
    /* 24 */ "Stato:",
    /* 25 */ "Spazio disponibile:",
    /* 26 */ "Riga di comando:",
    /* 27 */ "Inserisci l'URL del sito FTP:",
    /* 28 */ "Vai",
    /* 29 */ "Porta:",
    /* 30 */ "Utente:",
    /* 31 */ "Password:",
    /* 32 */ "Tipo di accesso:",
    /* 33 */ "Proxy:",
    /* 34 */ "Timeout:",
    /* 35 */ "Disconnetti al termine",
    /* 36 */ "Trascina e rilascia i file",
    /* 37 */ "Inserisci l'URL e fai clic su Vai",
    /* 38 */ "&WWW",
    /* 39 */ "&Esci",
    /* 40 */ "&Connetti",
    /* 41 */ "&Disconnetti",
    /* 42 */ "Filtro",
    /* 43 */ "Seleziona una lingua.",
    /* 44 */ "Potrai cambiarla in seguito, se necessario.",
    /* 45 */ "&Lingua",
    /* 46 */ "Predefinito",
    /* 47 */ "Elimina la cartella selezionata",
    /* 48 */ "Crea una nuova cartella",
    /* 49 */ "Dimensione del file",
    /* 50 */ "Elimina il file selezionato",
    /* 51 */ "Rinomina il file selezionato",
    /* 52 */ "Leggi il file di testo selezionato",
    /* 53 */ "Vai alla cartella superiore",
    /* 54 */ "Incolla dagli Appunti",
    /* 55 */ "Cancella l'elenco degli URL e le password",
    /* 56 */ "Usa la porta predefinita",
    /* 57 */ "Inserisci qui l'indirizzo del proxy",
    /* 58 */ "Connessione al sito FTP",
    /* 59 */ "Chiudi la connessione",
    /* 60 */ "Fai clic per RICEVERE file dal sito FTP",
    /* 61 */ "Fai clic per INVIARE file al sito FTP",
    /* 62 */ "Visualizza il file selezionato",
    /* 63 */ "Spazio disponibile sul disco rigido",
    /* 64 */ "Visita il sito web di Quorvell!",
    /* 65 */ "Cronometro",
    /* 66 */ "Metti in pausa",
    /* 67 */ "Azzera",
    /* 68 */ "Esci da Tolvane",
    /* 69 */ "Incolla dagli Appunti",
    /* 70 */ "Connessione al sito FTP",
    /* 71 */ "Nuova password",
    /* 72 */
    "Usa il tasto Maiusc o Ctrl per selezionare più file, quindi trascinali con il pulsante DESTRO del "
    "mouse nella finestra [I tuoi file]. \n"
    "Inserisci l'indirizzo FTP nella casella URL. Esempio: ftp: \n"
    "Password: imposta la password che verrà inviata con la richiesta di accesso ai computer remoti. \n"
    "Utente: imposta il nome che verrà inviato con le richieste ai computer remoti. Se il campo è vuoto, "
    "verrà inviato il nome utente predefinito «anonymous». Quando è tutto pronto, fai clic su Connetti "
    "per collegarti al sito FTP. Per INVIARE file, basta trascinarli verso il sito FTP; per RICEVERLI, "
    "basta trascinarli dal sito FTP. Per passare alla cartella superiore, fai clic sul pulsante Cartella "
    "sopra la finestra del sito FTP. Per leggere i file di testo del sito FTP, fai clic sul pulsante "
    "Testo. SICUREZZA: le password vengono salvate per facilitare il passaggio da un sito all'altro. Se "
    "necessario, al termine di ogni sessione eliminale con il pulsante di cancellazione. \n"
    "Usa la riga di comando per scaricare contemporaneamente un altro file da una posizione diversa. "
    "Inserisci l'URL completo e il nome del file.",
    /* 73 */ "Prova Quorvell Paperbird, il nostro blocco note gratuito per il desktop. Fai clic per scaricarlo.",
    /* 74 */ "Eliminare l'URL selezionato?",
    /* 75 */ "Eliminare l'URL?",
    /* 76 */ "Verifica la presenza di duplicati",
};
// clang-format on

static_assert(ItalianTexts.back() != nullptr, "a text is missing");
