/*
 * The modem service library of the host application: the road to the SIM
 * Application Toolkit of the card in the modem.  Plain C, a binary interface:
 * every offset and size below is part of it and proven at compile time.
 *
 * Text is UTF-16 in the processor's byte order, in fixed arrays of 16-bit code
 * units.  It ends at the first zero unit or, where there is none, at the end of
 * the array.
 *
 * Every function returns a status: 0 is success, anything else a failure.  The
 * functions may be called from any thread, also from inside a callback, and
 * return without waiting for the card.  What a record holds after a failure
 * means nothing.
 */
#ifndef MODEMSERVICE_H
#define MODEMSERVICE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define MOVA_EXTERN_C_BEGIN extern "C" {
#define MOVA_EXTERN_C_END }
#define MOVA_ENUM_WIDTH(type) : type
#define MOVA_STATIC_ASSERT(condition) static_assert(condition, #condition)
#else
#define MOVA_EXTERN_C_BEGIN
#define MOVA_EXTERN_C_END
#define MOVA_ENUM_WIDTH(type)
#define MOVA_STATIC_ASSERT(condition) _Static_assert(condition, #condition)
#endif

#if defined(__GNUC__)
#define MOVA_API __attribute__((visibility("default")))
#else
#define MOVA_API
#endif

MOVA_EXTERN_C_BEGIN

/* Length of the text arrays, in code units. */
enum { MOVA_TEXT_UNITS = 256, MOVA_LONG_TEXT_UNITS = 257 };

/* Type of a proactive command, as the library reports it (not the type of command byte of
 * ETSI TS 102 223 clause 9.4).  Any 32-bit value may arrive. */
typedef enum _MOVA_EN_STKTYPE MOVA_ENUM_WIDTH(int32_t){
    MOVA_STKTYPE_SETUP_MENU = 0,
    MOVA_STKTYPE_DISPLAY_TEXT = 1,
    MOVA_STKTYPE_GET_INKEY = 2,
    MOVA_STKTYPE_GET_INPUT = 3,
    MOVA_STKTYPE_SETUP_CALL = 4,
    MOVA_STKTYPE_PLAY_TONE = 5,
    MOVA_STKTYPE_SELECT_ITEM = 6,
    MOVA_STKTYPE_REFRESH = 7,
    MOVA_STKTYPE_SEND_SS = 8,
    MOVA_STKTYPE_SEND_SMS = 9,
    MOVA_STKTYPE_SEND_USSD = 10,
    MOVA_STKTYPE_LAUNCH_BROWSER = 11,
    MOVA_STKTYPE_SETUP_IDLE_MODE_TEXT = 12,
    MOVA_STKTYPE_END_SESSION = 99} _MOVA_EN_STKTYPE;

/* Type of the command that a terminal response answers: the same numbers. */
typedef _MOVA_EN_STKTYPE _STK_UI_EN_STKTYPE;

/* Result of a terminal response that carries no data. */
typedef enum _STK_UI_EN_TERMINALRESPONSE MOVA_ENUM_WIDTH(int32_t){
    STK_UI_TR_TERMINATED = 0, /* the user ended it, or nothing could handle the command */
    STK_UI_TR_SUCCESS = 1, /* performed */
    STK_UI_TR_NOT_SUPPORTED = 4 /* beyond what this terminal does */
} _STK_UI_EN_TERMINALRESPONSE;

/* First argument of the device callback; every other code is none of the toolkit's business. */
enum {
    MOVA_DEV_EVENT_DEVICE_REMOVED = 6601,
    MOVA_DEV_EVENT_DEVICE_READY = 6602,
    MOVA_DEV_EVENT_DEVICE_NOT_READY = 6603
};

/* What the user did in a sub menu: second argument of MOVA_STKSrv_SelectSubMenuItem. */
enum { MOVA_SUBMENU_ACTION_NONE = 0, MOVA_SUBMENU_ACTION_SELECT = 1, MOVA_SUBMENU_ACTION_BACK = 3 };

/* Second argument of the command callback. */
typedef struct MOVA_STKNotifyData {
    _MOVA_EN_STKTYPE enStkType;
    int16_t sCmdId; /* identifier of the command; every later call about it passes it back */
    int32_t bTimeOut; /* 1: the card's proactive session timed out, the type means nothing */
} MOVA_STKNotifyData;

typedef struct MOVA_STKMenuItem {
    int16_t sItemId; /* the item's identifier on the card */
    uint16_t szItemText[MOVA_TEXT_UNITS];
} MOVA_STKMenuItem;

/* The two menu records keep their pointer right behind the count on every architecture. */
#pragma pack(push, 4)

/* The main menu (Set Up Menu). */
typedef struct MOVA_STKMenuInfo {
    uint16_t szTitle[MOVA_TEXT_UNITS];
    int16_t sItemCount;
    MOVA_STKMenuItem *pItems; /* sItemCount items, the library's: see MOVA_STKSrv_ReleaseMenus */
} MOVA_STKMenuInfo;

/* A sub menu (Select Item). */
typedef struct MOVA_STKSubMenuInfo {
    int16_t sDefaultItem; /* identifier of the item that the card suggests, 0 for none */
    uint16_t szTitle[MOVA_LONG_TEXT_UNITS];
    int16_t sItemCount;
    MOVA_STKMenuItem *pItems; /* sItemCount items, the library's: see MOVA_STKSrv_ReleaseSubMenus */
} MOVA_STKSubMenuInfo;

#pragma pack(pop)

typedef struct MOVA_STKPlayToneInfo {
    int32_t nTone; /* tone value of ETSI TS 102 223 clause 8.16 */
    uint16_t usDuration; /* seconds */
    uint16_t szText[MOVA_LONG_TEXT_UNITS];
} MOVA_STKPlayToneInfo;

typedef struct MOVA_STKLaunchBrowserInfo {
    int32_t nLaunchMode; /* 0, 2 or 3: command qualifier of ETSI TS 102 223 clause 8.6 */
    uint16_t szUrl[MOVA_TEXT_UNITS];
} MOVA_STKLaunchBrowserInfo;

typedef struct MOVA_STKInKeyInfo {
    uint16_t szText[MOVA_TEXT_UNITS]; /* prompt */
    int32_t nInputType; /* 0-3; 1 wants yes or no, 2 digits only */
    int32_t bOption; /* 0 or 1 */
    uint16_t usDuration; /* milliseconds that a question for yes or no waits, 0 for ever */
} MOVA_STKInKeyInfo;

typedef struct MOVA_STKInputInfo {
    uint16_t szText[MOVA_TEXT_UNITS]; /* prompt */
    int32_t nInputType; /* 0-3; 2 wants digits only */
    int32_t bEcho; /* 1 shows what is typed, 0 hides it */
    int16_t sMinLen; /* code units */
    int16_t sMaxLen; /* code units */
    int32_t bOption; /* 0 or 1 */
    uint16_t szDefaultText[MOVA_TEXT_UNITS];
} MOVA_STKInputInfo;

typedef struct MOVA_STKPromptTextInfo {
    uint16_t szText[MOVA_TEXT_UNITS];
    int32_t nClearMode; /* 0: the text clears itself after a delay; other: the user clears it */
    uint16_t usDuration; /* seconds */
} MOVA_STKPromptTextInfo;

typedef struct MOVA_STKIdleModeTextInfo {
    uint16_t szText[MOVA_TEXT_UNITS];
} MOVA_STKIdleModeTextInfo;

typedef struct MOVA_STKRefreshInfo {
    int32_t nQualifier; /* command qualifier of ETSI TS 102 223 clause 8.6 */
    uint8_t abFiles[256]; /* file list, ETSI TS 102 223 clause 8.18 */
} MOVA_STKRefreshInfo;

/* ---- The layout, proven ---- */

#define MOVA_ASSERT_RECORD(record, size) MOVA_STATIC_ASSERT(sizeof(record) == (size))
#define MOVA_ASSERT_FIELD(record, field, offset, width)                                            \
    MOVA_STATIC_ASSERT(offsetof(record, field) == (offset));                                       \
    MOVA_STATIC_ASSERT(sizeof(((record *)0)->field) == (width))

MOVA_STATIC_ASSERT(sizeof(_MOVA_EN_STKTYPE) == 4);
MOVA_STATIC_ASSERT(sizeof(_STK_UI_EN_TERMINALRESPONSE) == 4);

MOVA_ASSERT_FIELD(MOVA_STKNotifyData, enStkType, 0, 4);
MOVA_ASSERT_FIELD(MOVA_STKNotifyData, sCmdId, 4, 2);
MOVA_ASSERT_FIELD(MOVA_STKNotifyData, bTimeOut, 8, 4);
MOVA_ASSERT_RECORD(MOVA_STKNotifyData, 12);

MOVA_ASSERT_FIELD(MOVA_STKMenuItem, sItemId, 0, 2);
MOVA_ASSERT_FIELD(MOVA_STKMenuItem, szItemText, 2, 512);
MOVA_ASSERT_RECORD(MOVA_STKMenuItem, 514);

MOVA_ASSERT_FIELD(MOVA_STKMenuInfo, szTitle, 0, 512);
MOVA_ASSERT_FIELD(MOVA_STKMenuInfo, sItemCount, 512, 2);
MOVA_ASSERT_FIELD(MOVA_STKMenuInfo, pItems, 516, sizeof(void *));
MOVA_ASSERT_RECORD(MOVA_STKMenuInfo, 516 + sizeof(void *));

MOVA_ASSERT_FIELD(MOVA_STKSubMenuInfo, sDefaultItem, 0, 2);
MOVA_ASSERT_FIELD(MOVA_STKSubMenuInfo, szTitle, 2, 514);
MOVA_ASSERT_FIELD(MOVA_STKSubMenuInfo, sItemCount, 516, 2);
MOVA_ASSERT_FIELD(MOVA_STKSubMenuInfo, pItems, 520, sizeof(void *));
MOVA_ASSERT_RECORD(MOVA_STKSubMenuInfo, 520 + sizeof(void *));

MOVA_ASSERT_FIELD(MOVA_STKPlayToneInfo, nTone, 0, 4);
MOVA_ASSERT_FIELD(MOVA_STKPlayToneInfo, usDuration, 4, 2);
MOVA_ASSERT_FIELD(MOVA_STKPlayToneInfo, szText, 6, 514);
MOVA_ASSERT_RECORD(MOVA_STKPlayToneInfo, 520);

MOVA_ASSERT_FIELD(MOVA_STKLaunchBrowserInfo, nLaunchMode, 0, 4);
MOVA_ASSERT_FIELD(MOVA_STKLaunchBrowserInfo, szUrl, 4, 512);
MOVA_ASSERT_RECORD(MOVA_STKLaunchBrowserInfo, 516);

MOVA_ASSERT_FIELD(MOVA_STKInKeyInfo, szText, 0, 512);
MOVA_ASSERT_FIELD(MOVA_STKInKeyInfo, nInputType, 512, 4);
MOVA_ASSERT_FIELD(MOVA_STKInKeyInfo, bOption, 516, 4);
MOVA_ASSERT_FIELD(MOVA_STKInKeyInfo, usDuration, 520, 2);
MOVA_ASSERT_RECORD(MOVA_STKInKeyInfo, 524);

MOVA_ASSERT_FIELD(MOVA_STKInputInfo, szText, 0, 512);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, nInputType, 512, 4);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, bEcho, 516, 4);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, sMinLen, 520, 2);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, sMaxLen, 522, 2);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, bOption, 524, 4);
MOVA_ASSERT_FIELD(MOVA_STKInputInfo, szDefaultText, 528, 512);
MOVA_ASSERT_RECORD(MOVA_STKInputInfo, 1040);

MOVA_ASSERT_FIELD(MOVA_STKPromptTextInfo, szText, 0, 512);
MOVA_ASSERT_FIELD(MOVA_STKPromptTextInfo, nClearMode, 512, 4);
MOVA_ASSERT_FIELD(MOVA_STKPromptTextInfo, usDuration, 516, 2);
MOVA_ASSERT_RECORD(MOVA_STKPromptTextInfo, 520);

MOVA_ASSERT_FIELD(MOVA_STKIdleModeTextInfo, szText, 0, 512);
MOVA_ASSERT_RECORD(MOVA_STKIdleModeTextInfo, 512);

MOVA_ASSERT_FIELD(MOVA_STKRefreshInfo, nQualifier, 0, 4);
MOVA_ASSERT_FIELD(MOVA_STKRefreshInfo, abFiles, 4, 256);
MOVA_ASSERT_RECORD(MOVA_STKRefreshInfo, 260);

/* ---- Callbacks: called on a thread of the library's own, one call at a time ----
 *
 * What follows from an answer, or from a choice in a menu, is not told before the call that gave it
 * has returned and its caller had the time to note that; 20 ms are enough. */

/* Command callback.  The second argument points to a MOVA_STKNotifyData that is valid during the
 * call; the first argument and the result mean nothing. */
typedef int (*MOVA_STKCallback)(int, void *);

/* Device callback.  The first argument is a device event code; the second argument and the result
 * mean nothing. */
typedef int (*MOVA_DevMgrCallback)(int, void *);

MOVA_API int32_t MOVA_STK_RegisterCallBack(MOVA_STKCallback pfnCallback);
MOVA_API int32_t MOVA_DevSrv_RegisterDevMgrCallback(MOVA_DevMgrCallback pfnCallback);

/* After these return, no call of the callback is running on another thread and none will start. */
MOVA_API int32_t MOVA_STK_UnRegisterCallBack(MOVA_STKCallback pfnCallback);
MOVA_API int32_t MOVA_DevSrv_UnRegisterDevMgrCallback(MOVA_DevMgrCallback pfnCallback);

/* ---- Menus.  A successful get allocates pItems; the release with the same record frees it ---- */

MOVA_API int32_t MOVA_STKSrv_GetMainMenu(MOVA_STKMenuInfo *pMenu);
MOVA_API int32_t MOVA_STKSrv_ReleaseMenus(MOVA_STKMenuInfo *pMenu);
MOVA_API int32_t MOVA_STKSrv_GetSubMenu(int16_t sCmdId, MOVA_STKSubMenuInfo *pMenu);
MOVA_API int32_t MOVA_STKSrv_ReleaseSubMenus(MOVA_STKSubMenuInfo *pMenu);

/* The user chose an item of the main menu.  sMenu is always 1: a card has one main menu. */
MOVA_API int32_t MOVA_STKSrv_SelectMenuItem(int16_t sMenu, int16_t sItemId);
MOVA_API int32_t MOVA_STKSrv_SelectSubMenuItem(int16_t sCmdId, int32_t nAction, int16_t sItemId);

/* ---- Details of the command in progress ---- */

MOVA_API int32_t MOVA_STKSrv_GetIdleModePrompt(int16_t sCmdId, MOVA_STKIdleModeTextInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetPlayTone(int16_t sCmdId, MOVA_STKPlayToneInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetLaunchBrowser(int16_t sCmdId, MOVA_STKLaunchBrowserInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetInKeyRequest(int16_t sCmdId, MOVA_STKInKeyInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetInputRequest(int16_t sCmdId, MOVA_STKInputInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetPromptText(int16_t sCmdId, MOVA_STKPromptTextInfo *pInfo);
MOVA_API int32_t MOVA_STKSrv_GetRefreshInfo(int16_t sCmdId, MOVA_STKRefreshInfo *pInfo);

/* ---- Answers to the command in progress ---- */

/* bAccepted: 1 the user accepted, 0 cancelled.  szText: zero-terminated, read during the call. */
MOVA_API int32_t MOVA_STKSrv_AnswerInKey(int16_t sCmdId, int32_t bAccepted, const uint16_t *szText);
MOVA_API int32_t MOVA_STKSrv_AnswerInput(int16_t sCmdId, int32_t bAccepted, const uint16_t *szText);
MOVA_API int32_t MOVA_STKSrv_SendNoDataResponse(int16_t sCmdId, _STK_UI_EN_STKTYPE enStkType,
                                                _STK_UI_EN_TERMINALRESPONSE enResponse);

MOVA_EXTERN_C_END

#endif
