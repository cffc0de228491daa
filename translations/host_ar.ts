<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar" sourcelanguage="en">
<context>
    <name>STKPlugin</name>
    <message>
        <source>IDS_STK_BTN_BACK</source>
        <translation>رجوع</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_SELECT</source>
        <translation>اختيار</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CLOSE</source>
        <translation>إغلاق</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_OK</source>
        <translation>موافق</translation>
    </message>
    <message>
        <source>IDS_STK_BTN_CANCEL</source>
        <translation>إلغاء</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_PROMPT</source>
        <translation>تنبيه</translation>
    </message>
    <message>
        <source>IDS_STK_MSG_INPUTFAILED</source>
        <translation>تعذّر إرسال الإدخال إلى بطاقة SIM.</translation>
    </message>
</context>
<context>
    <name>LuminePlugin</name>
    <message>
        <source>IDS_OK</source>
        <translation>موافق</translation>
    </message>
    <message>
        <source>IDS_CANCEL</source>
        <translation>إلغاء</translation>
    </message>
    <message>
        <source>IDS_YES</source>
        <translation>نعم</translation>
    </message>
    <message>
        <source>IDS_NO</source>
        <translation>لا</translation>
    </message>
</context>
<context>
    <name>ConnectionManager</name>
    <message>
        <source>IDS_CM_TITLE</source>
        <translation>مدير الاتصال</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_FILE</source>
        <translation>&amp;ملف</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_MODEM</source>
        <translation>ال&amp;مودم</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_CARD</source>
        <translation>ال&amp;بطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_LANGUAGE</source>
        <translation>الل&amp;غة</translation>
    </message>
    <message>
        <source>IDS_CM_LANGUAGE</source>
        <translation>اللغة</translation>
    </message>
    <message>
        <source>IDS_CM_MENU_HELP</source>
        <translation>م&amp;ساعدة</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_CARD</source>
        <translation>&amp;فتح بطاقة…</translation>
    </message>
    <message>
        <source>IDS_CM_QUIT</source>
        <translation>&amp;خروج</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT</source>
        <translation>خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_REMOVE</source>
        <translation>إ&amp;زالة المودم</translation>
    </message>
    <message>
        <source>IDS_CM_INSERT</source>
        <translation>إ&amp;دخال المودم</translation>
    </message>
    <message>
        <source>IDS_CM_END_SESSION</source>
        <translation>إ&amp;نهاء الجلسة</translation>
    </message>
    <message>
        <source>IDS_CM_TIME_OUT</source>
        <translation>انتهاء م&amp;هلة الجلسة</translation>
    </message>
    <message>
        <source>IDS_CM_SHOW_NETWORK</source>
        <translation>جهة ال&amp;شبكة</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_TITLE</source>
        <translation>جهة الشبكة</translation>
    </message>
    <message>
        <source>IDS_CM_NETWORK_HINT</source>
        <translation>قم بدور الشبكة والمودم، حتى أثناء فتح نافذة خدمات SIM.</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT</source>
        <translation>&amp;حول</translation>
    </message>
    <message>
        <source>IDS_CM_ABOUT_TEXT</source>
        <translation>يعرض حالة مودم النطاق العريض المتنقل ويفتح خدمات بطاقته (SIM Application Toolkit).</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT</source>
        <translation>بين البطاقة والمودم</translation>
    </message>
    <message>
        <source>IDS_CM_TRANSCRIPT_EMPTY</source>
        <translation>يظهر هنا ما ترسله البطاقة وما تتلقاه من ردود.</translation>
    </message>
    <message>
        <source>IDS_CM_COPY</source>
        <translation>نسخ</translation>
    </message>
    <message>
        <source>IDS_CM_CLEAR</source>
        <translation>مسح</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_CARD</source>
        <translation>لا توجد بطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_REMOVED</source>
        <translation>تمت إزالة المودم</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_READY</source>
        <translation>المودم جاهز</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_BUSY</source>
        <translation>الجلسة جارية</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_NAME</source>
        <translation>البطاقة: %1</translation>
    </message>
    <message>
        <source>IDS_CM_NO_CARD_HINT</source>
        <translation>افتح بطاقة من قائمة «ملف».</translation>
    </message>
    <message>
        <source>IDS_CM_OPEN_TITLE</source>
        <translation>فتح بطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_CARD_FILES</source>
        <translation>بطاقات محاكاة</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPENED</source>
        <translation>فتحت البطاقة %1</translation>
    </message>
    <message>
        <source>IDS_CM_TOOLKIT_FAILED</source>
        <translation>تعذّر فتح خدمات SIM.</translation>
    </message>
</context>
</TS>
