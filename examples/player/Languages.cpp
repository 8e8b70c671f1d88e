#include "Languages.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLibraryInfo>
#include <QtCore/QLocale>
#include <QtCore/QTranslator>

using namespace Qt::Literals::StringLiterals;

namespace {

void Install(const QString& name, const QString& folder)
{
    auto* translator = new QTranslator(qApp);
    if (translator->load(QLocale(), name, u"_"_s, folder)) {
        QCoreApplication::installTranslator(translator);
    }
}

} // namespace

void InstallTranslations()
{
    // The texts are English already. Qt would go on to the languages that the user likes less.
    if (QLocale().uiLanguages().value(0).startsWith("en"_L1)) {
        return;
    }
    Install(u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    Install(u"vantorAudioEngine"_s, u":/vantorAudioEngine/translations"_s);
    Install(u"player"_s, u":/translations"_s);
}
