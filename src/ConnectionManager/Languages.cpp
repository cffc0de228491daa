#include "Languages.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include "HostUi.h"
#include "platform/Change.h"

namespace {

struct Language {
    const char *code;
    const char *name;
};

const Language Known[] = {
    {"en", "English"}, {"de", "Deutsch"},     {"fr", "Français"},
    {"es", "Español"}, {"zh_CN", "简体中文"}, {"ar", "العربية"},
};

// Buttons and menus of Qt's own dialogs.
void loadQtCatalogue(const QString &code)
{
    static QTranslator *catalogue = nullptr;
    delete catalogue;
    catalogue = new QTranslator(qApp);
#if QT_VERSION < 0x060000
    const QString folder = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
#else
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
#endif
    if (catalogue->load("qtbase_" + code, folder))
        QCoreApplication::installTranslator(catalogue);
}

} // namespace

QStringList Languages::codes()
{
    QStringList all;
    for (const Language &language : Known)
        all << language.code;
    return all;
}

bool Languages::isKnown(const QString &code)
{
    return codes().contains(code);
}

QString Languages::nativeName(const QString &code)
{
    for (const Language &language : Known) {
        if (code == language.code)
            return QString::fromUtf8(language.name);
    }
    return code;
}

QString Languages::ofDesktop()
{
    const QString locale = QLocale::system().name();
    for (const QString &code : codes()) {
        if (locale == code || locale.section('_', 0, 0) == code)
            return code;
    }
    return "en";
}

bool Languages::apply(const QString &code)
{
    loadQtCatalogue(code);
    QApplication::setLayoutDirection(QLocale(code).textDirection());
    return HostUi::setLanguage(QCoreApplication::applicationDirPath() + "/../translations", code);
}

QString Languages::leftToRight(const QString &text)
{
    return QChar(0x2066) + text + QChar(0x2069);
}

QString Languages::text(const char *id)
{
    return Change::tr(id, "ConnectionManager");
}

// In one pass: what stands in an argument is no place for another.
QString Languages::text(const CardHost::Notice &notice)
{
    const QString pattern = text(notice.id.c_str());
    if (pattern == QString::fromStdString(notice.id))
        return QString::fromStdString(notice.text);
    QString result;
    for (int at = 0; at < pattern.size(); ++at) {
        const int number = pattern.at(at) == '%' ? pattern.mid(at + 1, 1).toInt() : 0;
        if (number < 1 || size_t(number) > notice.arguments.size()) {
            result += pattern.at(at);
            continue;
        }
        result += leftToRight(QString::fromStdString(notice.arguments[size_t(number) - 1]));
        ++at;
    }
    return result;
}
