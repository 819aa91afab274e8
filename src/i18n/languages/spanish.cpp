#include "i18n/text_table.h"

// clang-format off
constexpr TextTable SpanishTexts{
    /*  0 */ "&Opciones",
    /*  1 */ "&Vigilar el portapapeles",
    /*  2 */ "Mostrar la &línea de comandos",
    /*  3 */ "Convertir en &nombres de archivo cortos",
    /*  4 */ "Convertir primero en &minúsculas",
    /*  5 */ "&Guardar toda la información",
    /*  6 */ "Recordar la última &carpeta",
    /*  7 */ "&UNIX",
    /*  8 */ "&Salir",
    /*  9 */ "&Protocolo",
    /* 10 */ "&Predeterminado",
    /* 11 */ "&FTP",
    /* 12 */ "&HTTP",
    /* 13 */ "HTTP &seguro",
    /* 14 */ "&Mensajes",
    /* 15 */ "&Buscar mensajes o actualizaciones",
    /* 16 */ "&Ayuda",
    /* 17 */ "&Ayuda",
    /* 18 */ "A&cerca de Tolvane",
    /* 19 */ "¿Por qué es &gratis?",
    /* 20 */ "Archivos del sitio FTP",
    /* 21 */ "Sus archivos",
    /* 22 */ "Sus carpetas",
    /* 23 */ "Haga doble clic para cambiar de carpeta.",
    /* 24 */ "Estado:",
    /* 25 */ "Espacio disponible:",
    /* 26 */ "Línea de comandos:",
    /* 27 */ "Escriba la URL del sitio FTP:",
    /* 28 */ "Ir",
    /* 29 */ "Puerto:",
    /* 30 */ "Usuario:",
    /* 31 */ "Contraseña:",
    /* 32 */ "Tipo de acceso:",
    /* 33 */ "Proxy:",
    /* 34 */ "Espera máx.:",
    /* 35 */ "Desconectar al terminar",
    /* 36 */ "Arrastre y suelte los archivos",
    /* 37 */ "Escriba la URL y haga clic en Ir",
    /* 38 */ "&WWW",
    /* 39 */ "&Salir",
    /* 40 */ "&Conectar",
    /* 41 */ "&Desconectar",
    /* 42 */ "Filtro",
    /* 43 */ "Seleccione un idioma.",
    /* 44 */ "Podrá cambiarlo más adelante si es necesario.",
    /* 45 */ "&Idioma",
    /* 46 */ "Predeterminado",
    /* 47 */ "Eliminar la carpeta seleccionada",
    /* 48 */ "Crear una carpeta nueva",
    /* 49 */ "Tamaño del archivo",
    /* 50 */ "Eliminar el archivo seleccionado",
    /* 51 */ "Cambiar el nombre del archivo seleccionado",
    /* 52 */ "Leer el archivo de texto seleccionado",
    /* 53 */ "Ir a la carpeta superior",
    /* 54 */ "Pegar desde el portapapeles",
    /* 55 */ "Borrar la lista de URL y las contraseñas",
    /* 56 */ "Usar el puerto predeterminado",
    /* 57 */ "Escriba aquí la dirección del proxy",
    /* 58 */ "Conectar con el sitio FTP",
    /* 59 */ "Cerrar la conexión",
    /* 60 */ "Haga clic para RECIBIR archivos del sitio FTP",
    /* 61 */ "Haga clic para ENVIAR archivos al sitio FTP",
    /* 62 */ "Ver el archivo seleccionado",
    /* 63 */ "Espacio disponible en el disco duro",
    /* 64 */ "¡Visite el sitio web de Quorvell!",
    /* 65 */ "Cronómetro",
    /* 66 */ "Pausar",
    /* 67 */ "Poner a cero",
    /* 68 */ "Salir de Tolvane",
    /* 69 */ "Pegar desde el portapapeles",
    /* 70 */ "Conectar con el sitio FTP",
    /* 71 */ "Nueva contraseña",
    /* 72 */
    "Utilice la tecla Mayús o Ctrl para seleccionar varios archivos y, a continuación, arrástrelos con "
    "el botón DERECHO del ratón hasta la ventana [Sus archivos]. \n"
    "Escriba la dirección FTP en el cuadro URL. Ejemplo: ftp: \n"
    "Contraseña: establece la contraseña que se enviará con la solicitud de inicio de sesión en los "
    "equipos remotos. \n"
    "Usuario: establece el nombre que se enviará con las solicitudes a los equipos remotos. Si lo deja "
    "en blanco, se enviará el nombre de usuario predeterminado «anonymous». Cuando todo esté listo, haga "
    "clic en Conectar para establecer la conexión con el sitio FTP. Para ENVIAR o RECIBIR archivos, "
    "basta con arrastrarlos al sitio FTP o desde él. Para ir a la carpeta superior, haga clic en el "
    "botón Carpeta, situado encima de la ventana del sitio FTP. Para leer los archivos de texto del "
    "sitio FTP, haga clic en el botón Texto. SEGURIDAD: las contraseñas se guardan para facilitar el "
    "paso de un sitio a otro. Si es necesario, utilice el botón de borrado después de cada sesión para "
    "eliminarlas. \n"
    "Utilice la línea de comandos para descargar al mismo tiempo otro archivo desde otra ubicación. "
    "Escriba la URL completa y el nombre del archivo.",
    /* 73 */ "Pruebe Quorvell Paperbird, nuestro bloc de notas gratuito para PC. Haga clic para descargarlo.",
    /* 74 */ "¿Eliminar la URL seleccionada?",
    /* 75 */ "¿Eliminar la URL?",
    /* 76 */ "Comprobar si hay duplicados",
};
// clang-format on

static_assert(SpanishTexts.back() != nullptr, "a text is missing");
