#include "platform/Translation.h"

#include "core/Languages.h"
#include "maintenance/Office.h"
#include "platform/Convert.h"
#include "platform/Registry.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <algorithm>

namespace {

/// The toolkit's texts in the language whose own name this is; in English for an empty one, and where it does
/// not know it.
void TranslateToolkit(const QString& language) {
    static QTranslator* translator = nullptr; // the application's
    delete translator;
    translator = nullptr;
    if (language.isEmpty()) return;
    const QList<QLocale> all =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry);
    const auto locale = std::find_if(all.begin(), all.end(), [&](const QLocale& each) {
        return each.nativeLanguageName().compare(language, Qt::CaseInsensitive) == 0;
    });
    if (locale == all.end() || locale->language() == QLocale::English) return;
    translator = new QTranslator(QApplication::instance());
    if (translator->load(*locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(translator);
}

} // namespace

std::vector<std::string> LanguageFolders(std::string_view appPath) {
    return LanguageFolders(InstalledSet(PathFromQt(QApplication::applicationDirPath())), appPath);
}

std::string LoadTextsOfOffice(std::string_view appPath) {
    const std::string language = Registry::Language(appPath);
    TranslateToolkit(PathToQt(language));
    return LoadTexts(language, LanguageFolders(appPath), appPath);
}
