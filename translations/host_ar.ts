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
    <message>
        <source>IDS_CM_SEND_COMMAND</source>
        <translation>اجعل البطاقة تُرسل…</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_UNTIL_CLOSED</source>
        <translation>حتى الإغلاق</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_CLEARS_ITSELF</source>
        <translation>لمدة 5 ثوانٍ</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_ANY_KEY</source>
        <translation>أي حرف</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGIT</source>
        <translation>رقم واحد</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO</source>
        <translation>نعم أو لا</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_YES_NO_LIMIT</source>
        <translation>نعم أو لا خلال 8 ثوانٍ</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TEXT</source>
        <translation>نص</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DIGITS</source>
        <translation>من 2 إلى 4 أرقام</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_HIDDEN</source>
        <translation>أرقام مخفية</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_DEFAULT_TEXT</source>
        <translation>مع نص افتراضي</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_DIAL</source>
        <translation>نغمة الطلب</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BUSY</source>
        <translation>مشغول</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_ERROR</source>
        <translation>خطأ</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_CALL_WAITING</source>
        <translation>مكالمة في الانتظار</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_RINGING</source>
        <translation>رنين</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_BEEP</source>
        <translation>صفير</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_POSITIVE</source>
        <translation>إقرار إيجابي</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_TONE_NEGATIVE</source>
        <translation>إقرار سلبي</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_WEB</source>
        <translation>عنوان ويب</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_NONE</source>
        <translation>بلا عنوان</translation>
    </message>
    <message>
        <source>IDS_CM_WAY_URL_REFUSED</source>
        <translation>عنوان مرفوض</translation>
    </message>
    <message>
        <source>IDS_CM_URL_REFUSED</source>
        <translation>طلبت البطاقة %1 ولم يُفتح: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_ADDRESS</source>
        <translation>ليس عنوانًا</translation>
    </message>
    <message>
        <source>IDS_CM_URL_SCHEME</source>
        <translation>لا يُفتح إلا http و https</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_HOST</source>
        <translation>لا يذكر مضيفًا</translation>
    </message>
    <message>
        <source>IDS_CM_READER</source>
        <translation>قارئ البطاقات: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_READER_CARD</source>
        <translation>بطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_READER_EMPTY</source>
        <translation>فارغ</translation>
    </message>
    <message>
        <source>IDS_CM_READER_MUTE</source>
        <translation>لا استجابة</translation>
    </message>
    <message>
        <source>IDS_CM_READER_IN_USE</source>
        <translation>قيد الاستخدام</translation>
    </message>
    <message>
        <source>IDS_CM_READER_GONE</source>
        <translation>غير متصل</translation>
    </message>
    <message>
        <source>IDS_CM_NO_READER</source>
        <translation>قارئ البطاقات: %1</translation>
    </message>
    <message>
        <source>IDS_CM_READER_NONE</source>
        <translation>لا يوجد</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM</source>
        <translation>المودم: %1 — %2</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MODEM</source>
        <translation>المودم: لا يوجد</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_FREE</source>
        <translation>متاح</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_IN_USE_BY</source>
        <translation>يستخدمه %1</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_DENIED</source>
        <translation>لا توجد صلاحية</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_CONNECTED</source>
        <translation>متصل</translation>
    </message>
    <message>
        <source>IDS_CM_MODEM_NOT_READY</source>
        <translation>غير جاهز</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART</source>
        <translation>إ&amp;عادة التشغيل</translation>
    </message>
    <message>
        <source>IDS_CM_RESTART_MODEM</source>
        <translation>إ&amp;عادة التشغيل (تنقطع الشبكة لحظة)</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING</source>
        <translation>في انتظار البطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_MODEM</source>
        <translation>في انتظار المودم</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_PIN</source>
        <translation>في انتظار رمز PIN</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_WAITING_TOOLKIT</source>
        <translation>في انتظار خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_STATE_NO_TOOLKIT</source>
        <translation>لا توجد خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NO_BROWSER</source>
        <translation>طلبت البطاقة %1، لكن تعذّر تشغيل أي متصفح.</translation>
    </message>
    <message>
        <source>IDS_CM_UNCODABLE</source>
        <translation>لا تقبل هذه البطاقة أحد الأحرف المُدخلة.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TITLE</source>
        <translation>رقم PIN لبطاقة SIM</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_ASKS</source>
        <translation>تطلب البطاقة الموجودة في «%1» رقم PIN الخاص بها.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_WRONG</source>
        <translation>كان رقم PIN الأخير خاطئًا.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_FIELD</source>
        <translation>رقم &amp;PIN (من 4 إلى 8 أرقام):</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_TRIES</source>
        <translation>المحاولات المتبقية: %1</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_LAST_TRY</source>
        <translation>هذه هي المحاولة الأخيرة: أي رقم PIN خاطئ يقفل البطاقة.</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CONFIRM</source>
        <translation>أعلم ذلك وأنا متأكد من رقم PIN</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_OK</source>
        <translation>موافق</translation>
    </message>
    <message>
        <source>IDS_CM_PIN_CANCEL</source>
        <translation>المتابعة بدون PIN</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_DAEMON</source>
        <translation>خدمة البطاقات الذكية لا تعمل (pcscd)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_READER</source>
        <translation>لا يوجد قارئ بطاقات متصل</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SUCH_READER</source>
        <translation>لا يوجد قارئ بطاقات يبدأ اسمه بـ«%1»؛ المتوفر: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_GONE</source>
        <translation>%1: لم يعد القارئ متصلاً</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_FAILS</source>
        <translation>%1: أبلغت خدمة البطاقات الذكية: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_CHOSEN</source>
        <translation>%1: اختير من بين القارئات المتصلة (%2)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_HANGS</source>
        <translation>%1: القارئ لا يستجيب؛ يمكن فتح بطاقة أخرى</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_READER_ANSWERS</source>
        <translation>%1: عاد القارئ إلى الاستجابة</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_CARD</source>
        <translation>%1: لا توجد بطاقة في القارئ</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_MUTE</source>
        <translation>%1: البطاقة لا تستجيب (هل أُدخلت في الاتجاه الصحيح؟)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_IN_USE</source>
        <translation>%1: يستأثر برنامج آخر بالبطاقة</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_SILENT</source>
        <translation>%1: البطاقة لا تستجيب</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CARD_REFUSES</source>
        <translation>%1: ردّت البطاقة على %2 بالرمز %3</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_USIM</source>
        <translation>%1: بطاقة USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_ISIM</source>
        <translation>%1: بطاقة ISIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_SIM</source>
        <translation>%1: بطاقة SIM من الجيل الثاني</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_UICC</source>
        <translation>%1: بطاقة UICC بدون USIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_SIM</source>
        <translation>%1: لا يوجد تطبيق SIM على هذه البطاقة (هل هي بطاقة مصرفية؟)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU</source>
        <translation>%1: ليس لهذه البطاقة قائمة خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MENU_LATE</source>
        <translation>%1: وصلت قائمة خدمات SIM متأخرة</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_BLOCKED</source>
        <translation>%1: رقم PIN لهذه البطاقة مقفل؛ لا يفيد سوى رقم PUK الخاص بها في هاتف</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_LEFT_OUT</source>
        <translation>%1: تتابع البطاقة بدون رقم PIN الخاص بها</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_PIN_UNCHECKED</source>
        <translation>%1: تعذّر التحقق من رقم PIN: ردّت البطاقة بالرمز %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_BLOCKED</source>
        <translation>%1: ليس لهذه البطاقة قائمة خدمات SIM: رقم PIN الخاص بها مقفل؛ لا يفيد سوى رقم PUK في هاتف</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_LEFT_OUT</source>
        <translation>%1: ليس لهذه البطاقة قائمة خدمات SIM: تتابع بدون رقم PIN الخاص بها</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MENU_PIN_UNCHECKED</source>
        <translation>%1: ليس لهذه البطاقة قائمة خدمات SIM: تعذّر التحقق من رقم PIN الخاص بها: ردّت البطاقة بالرمز %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_CAPTURE_FAILED</source>
        <translation>%1: تعذّرت كتابة ملف الالتقاط: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_MISSING</source>
        <translation>%1: لا يوجد جهاز كهذا</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FOLDER</source>
        <translation>%1: هذا مجلد وليس جهازاً</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_FILE</source>
        <translation>%1: هذا ملف وليس جهازاً</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_NO_MBIM_MODEM</source>
        <translation>لا يوجد مودم MBIM متصل</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_DENIED</source>
        <translation>%1: لا يجوز لهذا المستخدم استعمال الجهاز (هل هو في المجموعة dialout؟)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_NONE</source>
        <translation>%1: هذا ليس منفذاً تسلسلياً</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IS_SERIAL</source>
        <translation>%1: هذا منفذ تسلسلي وليس جهاز MBIM؛ بأوامر AT يكون %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE</source>
        <translation>%1: يستأثر برنامج آخر بالجهاز (مدير مودم؟)</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_IN_USE_BY</source>
        <translation>%1: يستأثر برنامج آخر بالجهاز: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_GONE</source>
        <translation>%1: لم يعد المودم متصلاً</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_SILENT</source>
        <translation>%1: المودم لا يستجيب</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_ANSWERS</source>
        <translation>%1: عاد المودم إلى الاستجابة</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_UNREADABLE</source>
        <translation>%1: أرسل المودم أمراً لا يمكن قراءته</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_SIM</source>
        <translation>%1: لا توجد في المودم بطاقة SIM صالحة للاستعمال</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_PIN</source>
        <translation>%1: لم يقبل المودم رقم PIN؛ تتابع البطاقة بدونه</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES</source>
        <translation>%1: يرفض المودم %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_MENU</source>
        <translation>%1: لم تصل قائمة خدمات SIM؛ ترسلها البطاقة عند بدء تشغيلها: البطاقة، إعادة التشغيل</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_OPENED</source>
        <translation>%1: تعذر فتح المودم: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NO_TOOLKIT</source>
        <translation>%1: لا يقدم هذا المودم خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_REFUSES_TOOLKIT</source>
        <translation>%1: يرفض المودم أوامر خدمات SIM؛ قد يقبلها منفذ آخر من منافذه، أو أنه لا يقدم خدمات SIM</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_MENU</source>
        <translation>%1: يحتفظ هذا المودم بقائمة خدمات SIM لنفسه</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_KEEPS_COMMANDS</source>
        <translation>%1: يحتفظ هذا المودم لنفسه بما يلي: %2</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_COUNTS_DECIMALLY</source>
        <translation>%1: يعدّ هذا المودم أنواع الأوامر بالنظام العشري</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_TOOLKIT_IN_USE</source>
        <translation>%1: يستخدم برنامج آخر خدمات SIM الخاصة بالمودم</translation>
    </message>
    <message>
        <source>IDS_CM_NOTICE_MODEM_NOT_READY</source>
        <translation>%1: المودم غير جاهز: %2</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ASK</source>
        <translation>تريد البطاقة فتح صفحة من هذا الموقع:</translation>
    </message>
    <message>
        <source>IDS_CM_URL_OPEN</source>
        <translation>فتح</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS</source>
        <translation>دائمًا لهذا الموقع</translation>
    </message>
    <message>
        <source>IDS_CM_URL_ALWAYS_HINT</source>
        <translation>يفتحها، ويفتح صفحات هذا الموقع دون سؤال إلى أن يُغلق مدير الاتصال</translation>
    </message>
    <message>
        <source>IDS_CM_URL_NOT_NOW</source>
        <translation>ليس الآن</translation>
    </message>
    <message>
        <source>IDS_CM_NO_MENU</source>
        <translation>لا توجد قائمة في البطاقة</translation>
    </message>
</context>
</TS>
