#include "i18n/text_table.h"

// clang-format off
constexpr TextTable FinnishTexts{
    /*  0 */ "&Asetukset",
    /*  1 */ "T&arkkaile leikepöytää",
    /*  2 */ "&Näytä komentorivi",
    /*  3 */ "Muunna lyhyiksi tie&dostonimiksi",
    /*  4 */ "Muunna ensin &pieniksi kirjaimiksi",
    /*  5 */ "&Tallenna kaikki tiedot",
    /*  6 */ "&Muista viimeisin kansio",
    /*  7 */ "&UNIX",
    /*  8 */ "&Lopeta",
    /*  9 */ "&Protokolla",
    /* 10 */ "&Oletus",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "&Suojattu HTTP",
    /* 14 */ "&Viestit",
    /* 15 */ "&Tarkista viestit ja päivitykset",
    /* 16 */ "&Ohje",
    /* 17 */ "&Ohje",
    /* 18 */ "&Tietoja ohjelmasta",
    /* 19 */ "&Miksi ilmainen?",
    /* 20 */ "Palvelimen tiedostot",
    /* 21 */ "Paikalliset tiedostot",
    /* 22 */ "Paikalliset kansiot",
    /* 23 */ "Vaihda kansiota kaksoisnapsauttamalla.",
    /* 24 */ "Tila:",
    /* 25 */ "Vapaata tilaa:",
    /* 26 */ "Komentorivi:",
    /* 27 */ "Anna FTP-palvelimen URL-osoite:",
    /* 28 */ "Hae",
    /* 29 */ "Portti:",
    /* 30 */ "Tunnus:",
    /* 31 */ "Salasana:",
    /* 32 */ "Yhteystapa:",
    /* 33 */ "Proxy:",
    /* 34 */ "Aikaraja:",
    /* 35 */ "Katkaise yhteys lopuksi",
    /* 36 */ "Vedä ja pudota tiedostoja",
    /* 37 */ "Anna URL-osoite ja valitse Hae",
    /* 38 */ "&WWW",
    /* 39 */ "&Sulje",
    /* 40 */ "&Yhdistä",
    /* 41 */ "&Katkaise yhteys",
    /* 42 */ "Suodatin",
    /* 43 */ "Valitse kieli.",
    /* 44 */ "Voit tarvittaessa vaihtaa kieltä myöhemmin.",
    /* 45 */ "&Kieli",
    /* 46 */ "Oletus",
    /* 47 */ "Poista valittu kansio",
    /* 48 */ "Luo uusi kansio",
    /* 49 */ "Tiedoston koko",
    /* 50 */ "Poista valittu tiedosto",
    /* 51 */ "Nimeä valittu tiedosto uudelleen",
    /* 52 */ "Lue valittu tekstitiedosto",
    /* 53 */ "Siirry ylempään kansioon",
    /* 54 */ "Liitä leikepöydältä",
    /* 55 */ "Poista URL-luettelo ja salasanat",
    /* 56 */ "Käytä oletusporttia",
    /* 57 */ "Anna välityspalvelimen osoite tähän",
    /* 58 */ "Yhdistä FTP-palvelimeen",
    /* 59 */ "Katkaise yhteys FTP-palvelimeen",
    /* 60 */ "VASTAANOTA tiedostoja FTP-palvelimelta napsauttamalla",
    /* 61 */ "LÄHETÄ tiedostoja FTP-palvelimelle napsauttamalla",
    /* 62 */ "Näytä valittu tiedosto",
    /* 63 */ "Vapaata tilaa kiintolevyllä",
    /* 64 */ "Siirry Quorvellin verkkosivustoon!",
    /* 65 */ "Sekuntikello",
    /* 66 */ "Tauko",
    /* 67 */ "Nollaa",
    /* 68 */ "Lopeta Tolvane",
    /* 69 */ "Liitä leikepöydältä",
    /* 70 */ "Yhdistä FTP-palvelimeen",
    /* 71 */ "Uusi salasana",
    /* 72 */
    "Valitse useita tiedostoja pitämällä VAIHTO- tai CTRL-näppäintä painettuna ja vedä ne sitten HIIREN "
    "OIKEALLA PAINIKKEELLA ikkunaan [Paikalliset tiedostot]. \n"
    "Kirjoita FTP-osoite URL-ruutuun. Esimerkki: ftp: \n"
    "Salasana – Määrittää salasanan, joka lähetetään etätietokoneelle kirjauduttaessa. \n"
    "Tunnus – Määrittää käyttäjätunnuksen, joka lähetetään etätietokoneelle pyyntöjen mukana. Jos kenttä "
    "jätetään tyhjäksi, lähetetään oletustunnus anonymous. Kun olet valmis muodostamaan yhteyden "
    "FTP-palvelimeen, valitse Yhdistä. Voit LÄHETTÄÄ ja VASTAANOTTAA tiedostoja vetämällä ne "
    "FTP-palvelimelle tai sieltä omalle koneellesi. Pääset ylempään kansioon napsauttamalla "
    "FTP-palvelimen ikkunan yläpuolella olevaa kansiopainiketta. Tekstipainikkeella voit lukea "
    "FTP-palvelimella olevia tekstitiedostoja. TIETOTURVA: Salasanat tallennetaan, jotta palvelimelta "
    "toiselle siirtyminen olisi helpompaa. Poista salasanat tarvittaessa poistopainikkeella jokaisen "
    "istunnon jälkeen. \n"
    "Komentorivin avulla voit samaan aikaan ladata toisen tiedoston muualta. Anna koko URL-osoite "
    "tiedostonimineen.",
    /* 73 */ "Kokeile Quorvell Paperbirdiä, ilmaista muistikirjaohjelmaamme työpöydälle. Lataa se napsauttamalla.",
    /* 74 */ "Poistetaanko valittu URL-osoite?",
    /* 75 */ "Poistetaanko URL-osoite?",
    /* 76 */ "Tarkista, onko kaksoiskappaleita",
};
// clang-format on

static_assert(FinnishTexts.back() != nullptr, "a text is missing");
