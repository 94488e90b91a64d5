#include "common/vtr_plaintext.h"

#include <QLabel>
#include <QTextDocument> // Qt::mightBeRichText

QString VTPlainToolTip(const QString& strText)
{
    if (!Qt::mightBeRichText(strText))
        return strText;
    const QString strEscaped = strText.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br/>"));
    return QString(QLatin1String("<qt>") + strEscaped + QLatin1String("</qt>"));
}

void VTSetPlainText(QLabel* pLabel, const QString& strText, bool bToolTip)
{
    pLabel->setTextFormat(Qt::PlainText);
    pLabel->setText(strText);
    if (bToolTip)
        pLabel->setToolTip(VTPlainToolTip(strText));
}
