#pragma once

#include <QLocale>
#include <QStringList>
#include <QTranslator>

#include <memory>

/// Language files: "vtr_<locale>.qm" in one folder.
namespace Languages {

/// @return the absolute paths of a folder's language files, sorted by name.
QStringList Files(const QString& folder);

QLocale LocaleOf(const QString& file);

/// @return the language's own name for itself, for example "Deutsch".
QString DisplayName(const QString& file);

} // namespace Languages

/// The installed language: the translations of a file, Qt's own where the machine has them, and the locale.
class Translations
{
public:
    /// @return false, with nothing changed, when the file holds no translations.
    bool Install(const QString& file);

private:
    std::unique_ptr<QTranslator> m_own;
    std::unique_ptr<QTranslator> m_ofQt;
};
