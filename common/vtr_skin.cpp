#include "common/vtr_skin.h"

#include <QEvent>
#include <QFile>
#include <QWidget>

namespace {

QString SkinFile(const QString& strSkin, const QString& strFile)
{
    return QString(QLatin1String(":/") + strSkin + QLatin1Char('/') + strFile);
}

} // namespace

namespace VTSkin {

QString StyleSheetFile(const QString& strSkin, const QString& strKey)
{
    return SkinFile(strSkin, strKey + QLatin1String(".qss"));
}

QString LayoutFile(const QString& strSkin, const QString& strKey)
{
    return SkinFile(strSkin, strKey + QLatin1String(".ini"));
}

QString WarningIconFile(const QString& strSkin)
{
    return SkinFile(strSkin, QStringLiteral("warning.png"));
}

QString ClosedPageIconFile(const QString& strSkin)
{
    return SkinFile(strSkin, QStringLiteral("siblings_closed_normal.png"));
}

QString OpenPageIconFile(const QString& strSkin)
{
    return SkinFile(strSkin, QStringLiteral("siblings_normal.png"));
}

QIcon MainIcon(const QString& strSkin)
{
    return QIcon(SkinFile(strSkin, QStringLiteral("main.png")));
}

void ApplyStyleSheet(QWidget* pWidget, const QString& strSkin, const QString& strKey)
{
    QFile file(StyleSheetFile(strSkin, strKey));
    const QString strSheet = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    if (pWidget->styleSheet() != strSheet)
        pWidget->setStyleSheet(strSheet);
}

void ApplyToForm(QWidget* pForm, const QString& strSkin, const QString& strKey)
{
    pForm->setAutoFillBackground(true);
    ApplyStyleSheet(pForm, strSkin, strKey);
}

bool ChangesLook(const QEvent& event)
{
    return event.type() == QEvent::StyleChange || event.type() == QEvent::PaletteChange
        || event.type() == QEvent::FontChange;
}

} // namespace VTSkin
