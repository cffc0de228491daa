<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>STKPlugin</name>
    <message>
        <source>IDS_STK_BTN_BACK</source>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_SELECT</source>
        <translation>Elegir</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CLOSE</source>
        <translation>Cerrar</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CANCEL</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_PROMPT</source>
        <translation>Aviso</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_INPUTFAILED</source>
        <translation>No se pudo enviar la entrada a la tarjeta SIM.</translation>
    </message>
</context>
<context>
    <name>LuminePlugin</name>
    <message>
        <source>IDS_OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>IDS_CANCEL</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>IDS_YES</source>
        <translation>Sí</translation>
    </message>
    <message>
        <source>IDS_NO</source>
        <translation>No</translation>
    </message>
</context>
<context>
    <name>ConnectionManager</name>
    <message>
        <source>IDS_CM_TITLE</source>
        <translation>Gestor de conexión</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_FILE</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_MODEM</source>
        <translation>&amp;Módem</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_CARD</source>
        <translation>&amp;Tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_LANGUAGE</source>
        <translation>&amp;Idioma</translation>
    </message>
    <message>
        <source>IDS_CM_LANGUAGE</source>
        <translation>Idioma</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_HELP</source>
        <translation>A&amp;yuda</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_CARD</source>
        <translation>&amp;Abrir tarjeta…</translation>
    </message>
    <message>
        <source>IDS_CM_QUIT</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT</source>
        <translation>Servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_REMOVE</source>
        <translation>&amp;Retirar el módem</translation>
    </message>
    <message>
        <source>IDS_CM_INSERT</source>
        <translation>&amp;Insertar el módem</translation>
    </message>
    <message>
        <source>IDS_CM_END_SESSION</source>
        <translation>&amp;Terminar la sesión</translation>
    </message>
    <message>
        <source>IDS_CM_TIME_OUT</source>
        <translation>&amp;Agotar el tiempo de la sesión</translation>
    </message>
    <message>
        <source>IDS_CM_SHOW_NETWORK</source>
        <translation>Lado de la &amp;red</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_TITLE</source>
        <translation>Lado de la red</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_HINT</source>
        <translation>Haga de red y de módem, también con una ventana de los servicios SIM abierta.</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT</source>
        <translation>&amp;Acerca de</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT_TEXT</source>
        <translation>Muestra el estado de un módem móvil y abre los servicios (SIM Application Toolkit) de su tarjeta.</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT</source>
        <translation>Entre la tarjeta y el módem</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT_EMPTY</source>
        <translation>Aquí aparece lo que envía la tarjeta y lo que se le responde.</translation>
    </message>
    <message>
        <source>IDS_CM_COPY</source>
        <translation>Copiar</translation>
    </message>
    <message>
        <source>IDS_CM_CLEAR</source>
        <translation>Borrar</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_CARD</source>
        <translation>Sin tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_REMOVED</source>
        <translation>Módem retirado</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_READY</source>
        <translation>Módem listo</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_BUSY</source>
        <translation>Sesión en curso</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_NAME</source>
        <translation>Tarjeta: %1</translation>
    </message>
    <message>
        <source>IDS_CM_NO_CARD_HINT</source>
        <translation>Abra una tarjeta desde el menú Archivo.</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_TITLE</source>
        <translation>Abrir tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_FILES</source>
        <translation>Tarjetas simuladas</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPENED</source>
        <translation>La tarjeta abrió %1</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT_FAILED</source>
        <translation>No se pudieron abrir los servicios SIM.</translation>
    </message>
    <message>
        <source>IDS_CM_SEND_COMMAND</source>
        <translation>Hacer que la tarjeta envíe…</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_UNTIL_CLOSED</source>
        <translation>Hasta que se cierre</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_CLEARS_ITSELF</source>
        <translation>Durante 5 segundos</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_ANY_KEY</source>
        <translation>Cualquier carácter</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGIT</source>
        <translation>Una cifra</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO</source>
        <translation>Sí o no</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO_LIMIT</source>
        <translation>Sí o no en 8 segundos</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TEXT</source>
        <translation>Texto</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGITS</source>
        <translation>De 2 a 4 cifras</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_HIDDEN</source>
        <translation>Cifras ocultas</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DEFAULT_TEXT</source>
        <translation>Con un texto predeterminado</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_DIAL</source>
        <translation>Tono de marcar</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BUSY</source>
        <translation>Ocupado</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_ERROR</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_CALL_WAITING</source>
        <translation>Llamada en espera</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_RINGING</source>
        <translation>Tono de llamada</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BEEP</source>
        <translation>Pitido</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_POSITIVE</source>
        <translation>Confirmación positiva</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_NEGATIVE</source>
        <translation>Confirmación negativa</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_WEB</source>
        <translation>Dirección web</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_NONE</source>
        <translation>Sin dirección</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_REFUSED</source>
        <translation>Dirección rechazada</translation>
    </message>
    <message>
        <source>IDS_CM_URL_REFUSED</source>
        <translation>La tarjeta pidió %1, que no se abrió: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_ADDRESS</source>
        <translation>no es una dirección</translation>
    </message>
    <message>
        <source>IDS_CM_URL_SCHEME</source>
        <translation>solo se abren http y https</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_HOST</source>
        <translation>no indica ningún servidor</translation>
    </message>
    <message>
        <source>IDS_CM_READER</source>
        <translation>Lector de tarjetas: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_READER_CARD</source>
        <translation>tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_READER_EMPTY</source>
        <translation>vacío</translation>
    </message>
    <message>
        <source>IDS_CM_READER_MUTE</source>
        <translation>sin respuesta</translation>
    </message>
    <message>
        <source>IDS_CM_READER_IN_USE</source>
        <translation>en uso</translation>
    </message>
    <message>
        <source>IDS_CM_READER_GONE</source>
        <translation>no conectado</translation>
    </message>
    <message>
        <source>IDS_CM_NO_READER</source>
        <translation>Lector de tarjetas: %1</translation>
    </message>
    <message>
        <source>IDS_CM_READER_NONE</source>
        <translation>ninguno</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM</source>
        <translation>Módem: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MODEM</source>
        <translation>Módem: ninguno</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_FREE</source>
        <translation>libre</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_IN_USE_BY</source>
        <translation>en uso por %1</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_DENIED</source>
        <translation>sin permiso</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_CONNECTED</source>
        <translation>conectado</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_NOT_READY</source>
        <translation>no está listo</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART</source>
        <translation>Re&amp;iniciar</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART_MODEM</source>
        <translation>Re&amp;iniciar (la red se corta un momento)</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING</source>
        <translation>Esperando la tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_MODEM</source>
        <translation>Esperando el módem</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_PIN</source>
        <translation>Esperando el PIN</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_TOOLKIT</source>
        <translation>Esperando los servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_TOOLKIT</source>
        <translation>Sin servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_BROWSER</source>
        <translation>La tarjeta pidió %1, pero no se pudo iniciar ningún navegador.</translation>
    </message>
    <message>
        <source>IDS_CM_UNCODABLE</source>
        <translation>Esta tarjeta no admite uno de los caracteres introducidos.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TITLE</source>
        <translation>PIN de la tarjeta SIM</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_ASKS</source>
        <translation>La tarjeta en «%1» pide su PIN.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_WRONG</source>
        <translation>El último PIN era incorrecto.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_FIELD</source>
        <translation>&amp;PIN (de 4 a 8 cifras):</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TRIES</source>
        <translation>Intentos restantes: %1</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_LAST_TRY</source>
        <translation>Este es el último intento: un PIN incorrecto bloquea la tarjeta.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CONFIRM</source>
        <translation>Lo sé y estoy seguro del PIN</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CANCEL</source>
        <translation>Continuar sin PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_DAEMON</source>
        <translation>No hay ningún servicio de tarjetas inteligentes en marcha (pcscd)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_READER</source>
        <translation>No hay ningún lector de tarjetas conectado</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SUCH_READER</source>
        <translation>Ningún lector de tarjetas tiene un nombre que empiece por «%1»; disponibles: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_GONE</source>
        <translation>%1: el lector ya no está conectado</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_FAILS</source>
        <translation>%1: el servicio de tarjetas inteligentes informa: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_CHOSEN</source>
        <translation>%1: elegido entre %2 lectores</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_HANGS</source>
        <translation>%1: el lector no responde; puede abrir otra tarjeta</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_ANSWERS</source>
        <translation>%1: el lector vuelve a responder</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_CARD</source>
        <translation>%1: no hay ninguna tarjeta en el lector</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_MUTE</source>
        <translation>%1: la tarjeta no responde (¿está bien colocada?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_IN_USE</source>
        <translation>%1: otro programa tiene la tarjeta reservada</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_SILENT</source>
        <translation>%1: la tarjeta no responde</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_REFUSES</source>
        <translation>%1: la tarjeta responde a %2 con %3</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_USIM</source>
        <translation>%1: una tarjeta USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_ISIM</source>
        <translation>%1: una tarjeta ISIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_SIM</source>
        <translation>%1: una tarjeta SIM 2G</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_UICC</source>
        <translation>%1: una tarjeta UICC sin USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SIM</source>
        <translation>%1: esta tarjeta no tiene aplicación SIM (¿una tarjeta bancaria?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU</source>
        <translation>%1: esta tarjeta no tiene menú de servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MENU_LATE</source>
        <translation>%1: el menú de servicios SIM llegó tarde</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_BLOCKED</source>
        <translation>%1: el PIN de esta tarjeta está bloqueado; solo sirve su PUK, en un teléfono</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_LEFT_OUT</source>
        <translation>%1: la tarjeta continúa sin su PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_UNCHECKED</source>
        <translation>%1: no se pudo comprobar el PIN: la tarjeta responde %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED</source>
        <translation>%1: esta tarjeta no tiene menú de servicios SIM: su PIN está bloqueado; solo sirve su PUK, en un teléfono</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT</source>
        <translation>%1: esta tarjeta no tiene menú de servicios SIM: continúa sin su PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED</source>
        <translation>%1: esta tarjeta no tiene menú de servicios SIM: no se pudo comprobar su PIN: la tarjeta responde %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CAPTURE_FAILED</source>
        <translation>%1: no se puede escribir la captura: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_MISSING</source>
        <translation>%1: no existe tal dispositivo</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FOLDER</source>
        <translation>%1: es una carpeta, no un dispositivo</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FILE</source>
        <translation>%1: es un archivo, no un dispositivo</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MBIM_MODEM</source>
        <translation>No hay ningún módem MBIM conectado</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_DENIED</source>
        <translation>%1: este usuario no puede usar el dispositivo (¿está en el grupo dialout?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_NONE</source>
        <translation>%1: no es un puerto serie</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_SERIAL</source>
        <translation>%1: es un puerto serie, no un dispositivo MBIM; con comandos AT es %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE</source>
        <translation>%1: otro programa tiene el dispositivo reservado (¿un gestor de módems?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE_BY</source>
        <translation>%1: otro programa tiene el dispositivo reservado: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_GONE</source>
        <translation>%1: el módem ya no está conectado</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_SILENT</source>
        <translation>%1: el módem no responde</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_ANSWERS</source>
        <translation>%1: el módem vuelve a responder</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_UNREADABLE</source>
        <translation>%1: el módem envió una orden ilegible</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_SIM</source>
        <translation>%1: no hay ninguna tarjeta SIM utilizable en el módem</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_PIN</source>
        <translation>%1: el módem no aceptó el PIN; la tarjeta continúa sin él</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES</source>
        <translation>%1: el módem rechaza %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_MENU</source>
        <translation>%1: no ha llegado ningún menú de servicios SIM; la tarjeta lo envía al arrancar: Tarjeta, Reiniciar</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_OPENED</source>
        <translation>%1: no se pudo abrir el módem: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_TOOLKIT</source>
        <translation>%1: este módem no ofrece servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT</source>
        <translation>%1: el módem rechaza los comandos de servicios SIM; quizá los acepte otro de sus puertos, o no ofrece servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_MENU</source>
        <translation>%1: este módem se reserva el menú de servicios SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS</source>
        <translation>%1: este módem se reserva: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY</source>
        <translation>%1: este módem cuenta los tipos de órdenes en decimal</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE</source>
        <translation>%1: otro programa tiene los servicios SIM del módem</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_READY</source>
        <translation>%1: el módem no está listo: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ASK</source>
        <translation>La tarjeta quiere abrir una página de este sitio:</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPEN</source>
        <translation>Abrir</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS</source>
        <translation>Siempre para este sitio</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS_HINT</source>
        <translation>La abre, y las páginas de este sitio sin preguntar hasta que se cierre el gestor de conexión</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NOT_NOW</source>
        <translation>Ahora no</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MENU</source>
        <translation>La tarjeta no tiene menú</translation>
    </message>
</context>
</TS>
