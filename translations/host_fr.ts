<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>STKPlugin</name>
    <message>
        <source>IDS_STK_BTN_BACK</source>
        <translation>Retour</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_SELECT</source>
        <translation>Choisir</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CLOSE</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CANCEL</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_PROMPT</source>
        <translation>Remarque</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_INPUTFAILED</source>
        <translation>La saisie n’a pas pu être envoyée à la carte SIM.</translation>
    </message>
</context>
<context>
    <name>LuminePlugin</name>
    <message>
        <source>IDS_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_CANCEL</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>IDS_YES</source>
        <translation>Oui</translation>
    </message>
    <message>
        <source>IDS_NO</source>
        <translation>Non</translation>
    </message>
</context>
<context>
    <name>ConnectionManager</name>
    <message>
        <source>IDS_CM_TITLE</source>
        <translation>Gestionnaire de connexion</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_FILE</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_MODEM</source>
        <translation>&amp;Modem</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_CARD</source>
        <translation>&amp;Carte</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_LANGUAGE</source>
        <translation>&amp;Langue</translation>
    </message>
    <message>
        <source>IDS_CM_LANGUAGE</source>
        <translation>Langue</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_HELP</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_CARD</source>
        <translation>&amp;Ouvrir une carte…</translation>
    </message>
    <message>
        <source>IDS_CM_QUIT</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT</source>
        <translation>Services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_REMOVE</source>
        <translation>&amp;Retirer le modem</translation>
    </message>
    <message>
        <source>IDS_CM_INSERT</source>
        <translation>&amp;Insérer le modem</translation>
    </message>
    <message>
        <source>IDS_CM_END_SESSION</source>
        <translation>&amp;Terminer la session</translation>
    </message>
    <message>
        <source>IDS_CM_TIME_OUT</source>
        <translation>Faire &amp;expirer la session</translation>
    </message>
    <message>
        <source>IDS_CM_SHOW_NETWORK</source>
        <translation>Côté &amp;réseau</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_TITLE</source>
        <translation>Côté réseau</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_HINT</source>
        <translation>Jouez le réseau et le modem, même quand une fenêtre des services SIM est ouverte.</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT</source>
        <translation>À &amp;propos</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT_TEXT</source>
        <translation>Affiche l’état d’un modem mobile et ouvre les services (SIM Application Toolkit) de sa carte.</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT</source>
        <translation>Entre la carte et le modem</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT_EMPTY</source>
        <translation>Ici apparaît ce que la carte envoie et ce qui lui est répondu.</translation>
    </message>
    <message>
        <source>IDS_CM_COPY</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>IDS_CM_CLEAR</source>
        <translation>Effacer</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_CARD</source>
        <translation>Aucune carte</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_REMOVED</source>
        <translation>Modem retiré</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_READY</source>
        <translation>Modem prêt</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_BUSY</source>
        <translation>Session en cours</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_NAME</source>
        <translation>Carte : %1</translation>
    </message>
    <message>
        <source>IDS_CM_NO_CARD_HINT</source>
        <translation>Ouvrez une carte par le menu Fichier.</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_TITLE</source>
        <translation>Ouvrir une carte</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_FILES</source>
        <translation>Cartes simulées</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPENED</source>
        <translation>La carte a ouvert %1</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT_FAILED</source>
        <translation>Les services SIM n’ont pas pu être ouverts.</translation>
    </message>
    <message>
        <source>IDS_CM_SEND_COMMAND</source>
        <translation>Faire envoyer par la carte…</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_UNTIL_CLOSED</source>
        <translation>Jusqu’à sa fermeture</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_CLEARS_ITSELF</source>
        <translation>Pendant 5 secondes</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_ANY_KEY</source>
        <translation>Un caractère quelconque</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGIT</source>
        <translation>Un chiffre</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO</source>
        <translation>Oui ou non</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO_LIMIT</source>
        <translation>Oui ou non en 8 secondes</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TEXT</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGITS</source>
        <translation>De 2 à 4 chiffres</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_HIDDEN</source>
        <translation>Chiffres masqués</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DEFAULT_TEXT</source>
        <translation>Avec un texte par défaut</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_DIAL</source>
        <translation>Tonalité d’invitation</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BUSY</source>
        <translation>Occupé</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_ERROR</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_CALL_WAITING</source>
        <translation>Appel en attente</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_RINGING</source>
        <translation>Retour d’appel</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BEEP</source>
        <translation>Bip</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_POSITIVE</source>
        <translation>Accusé positif</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_NEGATIVE</source>
        <translation>Accusé négatif</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_WEB</source>
        <translation>Adresse web</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_NONE</source>
        <translation>Sans adresse</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_REFUSED</source>
        <translation>Adresse refusée</translation>
    </message>
    <message>
        <source>IDS_CM_URL_REFUSED</source>
        <translation>La carte a demandé %1, qui n’a pas été ouvert : %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_ADDRESS</source>
        <translation>ce n’est pas une adresse</translation>
    </message>
    <message>
        <source>IDS_CM_URL_SCHEME</source>
        <translation>seuls http et https sont ouverts</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_HOST</source>
        <translation>aucun hôte n’est indiqué</translation>
    </message>
    <message>
        <source>IDS_CM_READER</source>
        <translation>Lecteur de cartes : %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_READER_CARD</source>
        <translation>carte</translation>
    </message>
    <message>
        <source>IDS_CM_READER_EMPTY</source>
        <translation>vide</translation>
    </message>
    <message>
        <source>IDS_CM_READER_MUTE</source>
        <translation>pas de réponse</translation>
    </message>
    <message>
        <source>IDS_CM_READER_IN_USE</source>
        <translation>utilisé</translation>
    </message>
    <message>
        <source>IDS_CM_READER_GONE</source>
        <translation>non connecté</translation>
    </message>
    <message>
        <source>IDS_CM_NO_READER</source>
        <translation>Lecteur de cartes : %1</translation>
    </message>
    <message>
        <source>IDS_CM_READER_NONE</source>
        <translation>aucun</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM</source>
        <translation>Modem : %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MODEM</source>
        <translation>Modem : aucun</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_FREE</source>
        <translation>libre</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_IN_USE_BY</source>
        <translation>utilisé par %1</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_DENIED</source>
        <translation>accès refusé</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_CONNECTED</source>
        <translation>connecté</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_NOT_READY</source>
        <translation>pas prêt</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART</source>
        <translation>Re&amp;démarrer</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART_MODEM</source>
        <translation>Re&amp;démarrer (coupe le réseau un instant)</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING</source>
        <translation>En attente de la carte</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_MODEM</source>
        <translation>En attente du modem</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_PIN</source>
        <translation>En attente du code PIN</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_TOOLKIT</source>
        <translation>En attente des services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_TOOLKIT</source>
        <translation>Pas de services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_BROWSER</source>
        <translation>La carte a demandé %1, mais aucun navigateur n’a pu être lancé.</translation>
    </message>
    <message>
        <source>IDS_CM_UNCODABLE</source>
        <translation>Cette carte n’accepte pas l’un des caractères saisis.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TITLE</source>
        <translation>PIN de la carte SIM</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_ASKS</source>
        <translation>La carte dans « %1 » demande son code PIN.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_WRONG</source>
        <translation>Le dernier code PIN était erroné.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_FIELD</source>
        <translation>Code &amp;PIN (4 à 8 chiffres) :</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TRIES</source>
        <translation>Essais restants : %1</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_LAST_TRY</source>
        <translation>C’est le dernier essai : un code PIN erroné bloque la carte.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CONFIRM</source>
        <translation>Je le sais et je suis sûr du code PIN</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CANCEL</source>
        <translation>Continuer sans PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_DAEMON</source>
        <translation>Aucun service de cartes à puce n’est lancé (pcscd)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_READER</source>
        <translation>Aucun lecteur de cartes n’est connecté</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SUCH_READER</source>
        <translation>Aucun lecteur de cartes n’a un nom commençant par « %1 » ; disponibles : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_GONE</source>
        <translation>%1 : le lecteur n’est plus connecté</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_FAILS</source>
        <translation>%1 : le service de cartes à puce signale : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_CHOSEN</source>
        <translation>%1 : choisi parmi %2 lecteurs</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_HANGS</source>
        <translation>%1 : le lecteur ne répond pas ; une autre carte peut être ouverte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_ANSWERS</source>
        <translation>%1 : le lecteur répond de nouveau</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_CARD</source>
        <translation>%1 : il n’y a pas de carte dans le lecteur</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_MUTE</source>
        <translation>%1 : la carte ne répond pas (est-elle dans le bon sens ?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_IN_USE</source>
        <translation>%1 : un autre programme se réserve la carte</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_SILENT</source>
        <translation>%1 : la carte ne répond pas</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_REFUSES</source>
        <translation>%1 : la carte répond à %2 par %3</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_USIM</source>
        <translation>%1 : une carte USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_ISIM</source>
        <translation>%1 : une carte ISIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_SIM</source>
        <translation>%1 : une carte SIM 2G</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_UICC</source>
        <translation>%1 : une carte UICC sans USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SIM</source>
        <translation>%1 : pas d’application SIM sur cette carte (une carte bancaire ?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU</source>
        <translation>%1 : cette carte n’a pas de menu de services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MENU_LATE</source>
        <translation>%1 : le menu des services SIM est arrivé tard</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_BLOCKED</source>
        <translation>%1 : le code PIN de cette carte est bloqué ; seul son code PUK, dans un téléphone, peut aider</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_LEFT_OUT</source>
        <translation>%1 : la carte continue sans son code PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_UNCHECKED</source>
        <translation>%1 : le code PIN n’a pas pu être vérifié : la carte répond %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED</source>
        <translation>%1 : cette carte n’a pas de menu de services SIM : son code PIN est bloqué ; seul son code PUK, dans un téléphone, peut aider</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT</source>
        <translation>%1 : cette carte n’a pas de menu de services SIM : elle continue sans son code PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED</source>
        <translation>%1 : cette carte n’a pas de menu de services SIM : son code PIN n’a pas pu être vérifié : la carte répond %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CAPTURE_FAILED</source>
        <translation>%1 : impossible d’écrire la capture : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_MISSING</source>
        <translation>%1 : ce périphérique n’existe pas</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FOLDER</source>
        <translation>%1 : c’est un dossier, pas un périphérique</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FILE</source>
        <translation>%1 : c’est un fichier, pas un périphérique</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MBIM_MODEM</source>
        <translation>Aucun modem MBIM n’est connecté</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_DENIED</source>
        <translation>%1 : cet utilisateur n’a pas accès au périphérique (fait-il partie du groupe dialout ?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_NONE</source>
        <translation>%1 : ce n’est pas un port série</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_SERIAL</source>
        <translation>%1 : c’est un port série, pas un périphérique MBIM ; avec des commandes AT, c’est %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE</source>
        <translation>%1 : un autre programme se réserve le périphérique (un gestionnaire de modems ?)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE_BY</source>
        <translation>%1 : un autre programme se réserve le périphérique : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_GONE</source>
        <translation>%1 : le modem n’est plus connecté</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_SILENT</source>
        <translation>%1 : le modem ne répond pas</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_ANSWERS</source>
        <translation>%1 : le modem répond de nouveau</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_UNREADABLE</source>
        <translation>%1 : le modem a envoyé une commande illisible</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_SIM</source>
        <translation>%1 : il n’y a pas de carte SIM utilisable dans le modem</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_PIN</source>
        <translation>%1 : le modem n’a pas accepté le code PIN ; la carte continue sans lui</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES</source>
        <translation>%1 : le modem refuse %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_MENU</source>
        <translation>%1 : aucun menu de services SIM n’est arrivé ; la carte l’envoie à son démarrage : Carte, Redémarrer</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_OPENED</source>
        <translation>%1 : impossible d’ouvrir le modem : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_TOOLKIT</source>
        <translation>%1 : ce modem n’offre pas de services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT</source>
        <translation>%1 : le modem refuse les commandes des services SIM ; un autre de ses ports les accepte peut-être, ou il n’offre pas de services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_MENU</source>
        <translation>%1 : ce modem garde pour lui le menu des services SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS</source>
        <translation>%1 : ce modem garde pour lui : %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY</source>
        <translation>%1 : ce modem compte les types de commandes en décimal</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE</source>
        <translation>%1 : un autre programme utilise les services SIM du modem</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_READY</source>
        <translation>%1 : le modem n’est pas prêt : %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ASK</source>
        <translation>La carte veut ouvrir une page de ce site :</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPEN</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS</source>
        <translation>Toujours pour ce site</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS_HINT</source>
        <translation>L’ouvre, puis les pages de ce site sans demander, jusqu’à la fermeture du gestionnaire de connexion</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NOT_NOW</source>
        <translation>Pas maintenant</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MENU</source>
        <translation>La carte n’a pas de menu</translation>
    </message>
</context>
</TS>
