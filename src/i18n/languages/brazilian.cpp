#include "i18n/text_table.h"

// clang-format off
constexpr TextTable BrazilianTexts{
    /*  0 */ "&Opções",
    /*  1 */ "&Monitorar a área de transferência",
    /*  2 */ "Mostrar a &linha de comando",
    /*  3 */ "Converter em &nomes de arquivo curtos",
    /*  4 */ "&Converter primeiro em minúsculas",
    /*  5 */ "Salvar &todas as informações",
    /*  6 */ "Lembrar a última &pasta",
    /*  7 */ "&UNIX",
    /*  8 */ "&Sair",
    /*  9 */ "&Protocolo",
    /* 10 */ "&Padrão",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "HTTP &seguro",
    /* 14 */ "&Mensagens",
    /* 15 */ "&Verificar se há mensagens ou atualizações",
    /* 16 */ "&Ajuda",
    /* 17 */ "&Ajuda",
    /* 18 */ "&Sobre o Tolvane",
    /* 19 */ "Por que é &gratuito?",
    /* 20 */ "Arquivos do site FTP",
    /* 21 */ "Seus arquivos",
    /* 22 */ "Suas pastas",
    /* 23 */ "Clique duas vezes para mudar de pasta.",
    /* 24 */ "Status:",
    /* 25 */ "Espaço disponível:",
    /* 26 */ "Linha de comando:",
    /* 27 */ "Digite a URL do site FTP:",
    /* 28 */ "Ir",
    /* 29 */ "Porta:",
    /* 30 */ "Usuário:",
    /* 31 */ "Senha:",
    /* 32 */ "Tipo de acesso:",
    /* 33 */ "Proxy:",
    /* 34 */ "Tempo limite:",
    /* 35 */ "Desconectar ao terminar",
    /* 36 */ "Arraste e solte os arquivos",
    /* 37 */ "Digite a URL e clique em Ir",
    /* 38 */ "&WWW",
    /* 39 */ "&Sair",
    /* 40 */ "&Conectar",
    /* 41 */ "&Desconectar",
    /* 42 */ "Filtro",
    /* 43 */ "Selecione um idioma.",
    /* 44 */ "Você poderá alterá-lo mais tarde, se necessário.",
    /* 45 */ "&Idioma",
    /* 46 */ "Padrão",
    /* 47 */ "Excluir a pasta selecionada",
    /* 48 */ "Criar uma nova pasta",
    /* 49 */ "Tamanho do arquivo",
    /* 50 */ "Excluir o arquivo selecionado",
    /* 51 */ "Renomear o arquivo selecionado",
    /* 52 */ "Ler o arquivo de texto selecionado",
    /* 53 */ "Subir um nível",
    /* 54 */ "Colar da área de transferência",
    /* 55 */ "Apagar a lista de URLs e as senhas",
    /* 56 */ "Usar a porta padrão",
    /* 57 */ "Digite aqui o endereço do proxy",
    /* 58 */ "Conectar-se ao site FTP",
    /* 59 */ "Encerrar a conexão",
    /* 60 */ "Clique para RECEBER arquivos do site FTP",
    /* 61 */ "Clique para ENVIAR arquivos para o site FTP",
    /* 62 */ "Exibir o arquivo selecionado",
    /* 63 */ "Espaço disponível no disco rígido",
    /* 64 */ "Visite o site da Quorvell!",
    /* 65 */ "Cronômetro",
    /* 66 */ "Pausar",
    /* 67 */ "Zerar",
    /* 68 */ "Sair do Tolvane",
    /* 69 */ "Colar da área de transferência",
    /* 70 */ "Conectar-se ao site FTP",
    /* 71 */ "Nova senha",
    /* 72 */
    "Use a tecla Shift ou Ctrl para selecionar vários arquivos e arraste-os com o botão DIREITO do mouse "
    "para a janela [Seus arquivos]. \n"
    "Digite o endereço FTP na caixa de URL. Exemplo: ftp: \n"
    "Senha: define a senha que será enviada com a solicitação de login nos computadores remotos. \n"
    "Usuário: define o nome que será enviado com as solicitações aos computadores remotos. Se este campo "
    "ficar em branco, será enviado o nome de usuário padrão “anonymous”. Quando tudo estiver pronto, "
    "clique em Conectar para acessar o site FTP. Para ENVIAR ou RECEBER arquivos, basta arrastá-los para "
    "o site FTP ou a partir dele. Para subir um nível, clique no botão Pasta, acima da janela do site "
    "FTP. Para ler os arquivos de texto do site FTP, clique no botão Texto. SEGURANÇA: as senhas são "
    "salvas para facilitar a mudança de um site para outro. Se necessário, use o botão de apagar ao "
    "final de cada sessão para excluí-las. \n"
    "Use a linha de comando para baixar, ao mesmo tempo, outro arquivo de um local diferente. Digite a "
    "URL completa e o nome do arquivo.",
    /* 73 */ "Experimente o Quorvell Paperbird, nosso bloco de notas gratuito para desktop. Clique para baixar.",
    /* 74 */ "Excluir a URL selecionada?",
    /* 75 */ "Excluir a URL?",
    /* 76 */ "Verificar se há arquivos duplicados",
};
// clang-format on

static_assert(BrazilianTexts.back() != nullptr, "a text is missing");
