#include "i18n/text_table.h"

// clang-format off
constexpr TextTable FrenchTexts{
    /*  0 */ "&Options",
    /*  1 */ "&Surveiller le presse-papiers",
    /*  2 */ "&Afficher la ligne de commande",
    /*  3 */ "Convertir en noms de fichiers &courts",
    /*  4 */ "Convertir d’abord en &minuscules",
    /*  5 */ "&Enregistrer toutes les informations",
    /*  6 */ "Mémoriser le dernier &dossier",
    /*  7 */ "&UNIX",
    /*  8 */ "&Quitter",
    /*  9 */ "&Protocole",
    /* 10 */ "&Par défaut",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "HTTP &sécurisé",
    /* 14 */ "&Messages",
    /* 15 */ "&Rechercher des messages ou des mises à jour",
    /* 16 */ "&Aide",
    /* 17 */ "&Aide",
    /* 18 */ "À &propos de Tolvane",
    /* 19 */ "Pourquoi est-ce &gratuit ?",
    /* 20 */ "Fichiers du site FTP",
    /* 21 */ "Vos fichiers",
    /* 22 */ "Vos dossiers",
    /* 23 */ "Double-cliquez pour changer de dossier.",
    /* 24 */ "État :",
    /* 25 */ "Espace disponible :",
    /* 26 */ "Ligne de commande :",
    /* 27 */ "Saisissez l’URL du site FTP :",
    /* 28 */ "OK",
    /* 29 */ "Port :",
    /* 30 */ "Identifiant :",
    /* 31 */ "Mot de passe :",
    /* 32 */ "Type d’accès :",
    /* 33 */ "Proxy :",
    /* 34 */ "Délai limite :",
    /* 35 */ "Se déconnecter à la fin",
    /* 36 */ "Glissez-déposez les fichiers",
    /* 37 */ "Saisissez l’URL et cliquez sur OK",
    /* 38 */ "&WWW",
    /* 39 */ "&Quitter",
    /* 40 */ "&Connexion",
    /* 41 */ "&Déconnexion",
    /* 42 */ "Filtre",
    /* 43 */ "Sélectionnez une langue.",
    /* 44 */ "Vous pourrez en changer plus tard, au besoin.",
    /* 45 */ "&Langue",
    /* 46 */ "Par défaut",
    /* 47 */ "Supprimer le dossier sélectionné",
    /* 48 */ "Créer un nouveau dossier",
    /* 49 */ "Taille du fichier",
    /* 50 */ "Supprimer le fichier sélectionné",
    /* 51 */ "Renommer le fichier sélectionné",
    /* 52 */ "Lire le fichier texte sélectionné",
    /* 53 */ "Remonter au dossier parent",
    /* 54 */ "Coller depuis le presse-papiers",
    /* 55 */ "Effacer la liste des URL et les mots de passe",
    /* 56 */ "Utiliser le port par défaut",
    /* 57 */ "Saisissez ici l’adresse du proxy",
    /* 58 */ "Connexion au site FTP",
    /* 59 */ "Fermer la connexion",
    /* 60 */ "Cliquez pour RECEVOIR des fichiers du site FTP",
    /* 61 */ "Cliquez pour ENVOYER des fichiers vers le site FTP",
    /* 62 */ "Afficher le fichier sélectionné",
    /* 63 */ "Espace disponible sur le disque dur",
    /* 64 */ "Visitez le site web de Quorvell !",
    /* 65 */ "Chronomètre",
    /* 66 */ "Mettre en pause",
    /* 67 */ "Remettre à zéro",
    /* 68 */ "Quitter Tolvane",
    /* 69 */ "Coller depuis le presse-papiers",
    /* 70 */ "Connexion au site FTP",
    /* 71 */ "Nouveau mot de passe",
    /* 72 */
    "Utilisez la touche Maj ou Ctrl pour sélectionner plusieurs fichiers, puis faites-les glisser avec "
    "le bouton DROIT de la souris vers la fenêtre [Vos fichiers]. \n"
    "Saisissez l’adresse du site FTP dans la zone URL. Exemple : ftp: \n"
    "Mot de passe : définit le mot de passe transmis avec la demande d’ouverture de session sur les "
    "ordinateurs distants. \n"
    "Identifiant : définit le nom transmis avec les demandes adressées aux ordinateurs distants. Si ce "
    "champ reste vide, le nom d’utilisateur par défaut « anonymous » est transmis. Lorsque tout est "
    "prêt, cliquez sur Connexion pour vous connecter au site FTP. Pour ENVOYER ou RECEVOIR des fichiers, "
    "il suffit de les faire glisser vers le site FTP ou depuis celui-ci. Pour remonter au dossier "
    "parent, cliquez sur le bouton Dossier situé au-dessus de la fenêtre du site FTP. Pour lire les "
    "fichiers texte du site FTP, cliquez sur le bouton Texte. SÉCURITÉ : les mots de passe sont "
    "enregistrés afin de faciliter le passage d’un site à l’autre. Au besoin, effacez-les à la fin de "
    "chaque session à l’aide du bouton d’effacement. \n"
    "Utilisez la ligne de commande pour télécharger en même temps un autre fichier depuis un autre "
    "emplacement. Saisissez l’URL complète et le nom du fichier.",
    /* 73 */ "Essayez Quorvell Paperbird, notre bloc-notes gratuit pour PC. Cliquez pour le télécharger.",
    /* 74 */ "Supprimer l’URL sélectionnée ?",
    /* 75 */ "Supprimer l’URL ?",
    /* 76 */ "Vérifier la présence de doublons",
};
// clang-format on

static_assert(FrenchTexts.back() != nullptr, "a text is missing");
