#include "i18n/text_table.h"

// clang-format off
constexpr TextTable PortugueseTexts{
    /*  0 */ "&Opções",
    /*  1 */ "Monitorizar a área de &transferência",
    /*  2 */ "Mostrar a linha de &comandos",
    /*  3 */ "Converter em &nomes de ficheiro curtos",
    /*  4 */ "Converter primeiro em &minúsculas",
    /*  5 */ "&Guardar todas as informações",
    /*  6 */ "Memorizar a última &pasta",
    /*  7 */ "&UNIX",
    /*  8 */ "&Sair",
    /*  9 */ "&Protocolo",
    /* 10 */ "&Predefinido",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "HTTP &seguro",
    /* 14 */ "&Mensagens",
    /* 15 */ "&Procurar mensagens ou atualizações",
    /* 16 */ "&Ajuda",
    /* 17 */ "&Ajuda",
    /* 18 */ "A&cerca do Tolvane",
    /* 19 */ "Porque é que é &gratuito?",
    /* 20 */ "Ficheiros do site FTP",
    /* 21 */ "Os seus ficheiros",
    /* 22 */ "As suas pastas",
    /* 23 */ "Faça duplo clique para mudar de pasta.",
    /* 24 */ "Estado:",
    /* 25 */ "Espaço disponível:",
    /* 26 */ "Linha de comandos:",
    /* 27 */ "Introduza o URL do site FTP:",
    /* 28 */ "Ir",
    /* 29 */ "Porta:",
    /* 30 */ "Utilizador:",
    /* 31 */ "Palavra-passe:",
    /* 32 */ "Tipo de acesso:",
    /* 33 */ "Proxy:",
    /* 34 */ "Tempo limite:",
    /* 35 */ "Terminar a ligação ao concluir",
    /* 36 */ "Arraste e largue os ficheiros",
    /* 37 */ "Introduza o URL e clique em Ir",
    /* 38 */ "&WWW",
    /* 39 */ "&Sair",
    /* 40 */ "&Ligar",
    /* 41 */ "&Desligar",
    /* 42 */ "Filtro",
    /* 43 */ "Selecione um idioma.",
    /* 44 */ "Poderá alterá-lo mais tarde, se necessário.",
    /* 45 */ "&Idioma",
    /* 46 */ "Predefinido",
    /* 47 */ "Eliminar a pasta selecionada",
    /* 48 */ "Criar uma nova pasta",
    /* 49 */ "Tamanho do ficheiro",
    /* 50 */ "Eliminar o ficheiro selecionado",
    /* 51 */ "Mudar o nome do ficheiro selecionado",
    /* 52 */ "Ler o ficheiro de texto selecionado",
    /* 53 */ "Subir um nível",
    /* 54 */ "Colar da área de transferência",
    /* 55 */ "Apagar a lista de URL e as palavras-passe",
    /* 56 */ "Utilizar a porta predefinida",
    /* 57 */ "Introduza aqui o endereço do proxy",
    /* 58 */ "Ligar ao site FTP",
    /* 59 */ "Terminar a ligação",
    /* 60 */ "Clique para RECEBER ficheiros do site FTP",
    /* 61 */ "Clique para ENVIAR ficheiros para o site FTP",
    /* 62 */ "Ver o ficheiro selecionado",
    /* 63 */ "Espaço disponível no disco rígido",
    /* 64 */ "Visite o site da Quorvell!",
    /* 65 */ "Cronómetro",
    /* 66 */ "Colocar em pausa",
    /* 67 */ "Repor a zero",
    /* 68 */ "Sair do Tolvane",
    /* 69 */ "Colar da área de transferência",
    /* 70 */ "Ligar ao site FTP",
    /* 71 */ "Nova palavra-passe",
    /* 72 */
    "Utilize a tecla Shift ou Ctrl para selecionar vários ficheiros e, em seguida, arraste-os com o "
    "botão DIREITO do rato para a janela [Os seus ficheiros]. \n"
    "Introduza o endereço FTP na caixa do URL. Exemplo: ftp: \n"
    "Palavra-passe: define a palavra-passe que será enviada com o pedido de início de sessão nos "
    "computadores remotos. \n"
    "Utilizador: define o nome que será enviado com os pedidos aos computadores remotos. Se deixar este "
    "campo em branco, será enviado o nome de utilizador predefinido «anonymous». Quando estiver tudo "
    "pronto, clique em Ligar para estabelecer a ligação ao site FTP. Para ENVIAR ou RECEBER ficheiros, "
    "basta arrastá-los para o site FTP ou a partir dele. Para subir um nível, clique no botão Pasta, por "
    "cima da janela do site FTP. Para ler os ficheiros de texto do site FTP, clique no botão Texto. "
    "SEGURANÇA: as palavras-passe são guardadas para facilitar a passagem de um site para outro. Se "
    "necessário, utilize o botão de apagar no fim de cada sessão para as eliminar. \n"
    "Utilize a linha de comandos para transferir, ao mesmo tempo, outro ficheiro a partir de uma "
    "localização diferente. Introduza o URL completo e o nome do ficheiro.",
    /* 73 */ "Experimente o Quorvell Paperbird, o nosso bloco de notas gratuito para PC. Clique para transferir.",
    /* 74 */ "Eliminar o URL selecionado?",
    /* 75 */ "Eliminar o URL?",
    /* 76 */ "Verificar se há duplicados",
};
// clang-format on

static_assert(PortugueseTexts.back() != nullptr, "a text is missing");
