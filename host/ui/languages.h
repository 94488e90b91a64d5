#pragma once

#include <QLocale>
#include <QStringList>
#include <QTranslator>

#include <memory>

/// Languages are files named "vtr_<locale>.qm" in one folder.
namespace Languages {

/// Absolute paths of the language files of a folder, by name.
QStringList Files(const QString& folder);

QLocale LocaleOf(const QString& file);

/// The language's name in itself, for example "Deutsch".
QString DisplayName(const QString& file);

} // namespace Languages

/// The language in use: translations of a language file, Qt's own where the machine has them, and the locale.
class Translations
{
public:
    /// @return false, with everything as it was, when the file holds no translations.
    bool Install(const QString& file);

private:
    std::unique_ptr<QTranslator> m_own;
    std::unique_ptr<QTranslator> m_ofQt;
};
