#include "dialogs/vtr_setargument.h"

#include "common/vtr_columns.h"
#include "common/vtr_ids.h"
#include "common/vtr_plaintext.h"
#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "common/vtr_tablecells.h"
#include "common/vtr_tablerows.h"
#include "dialogs/vtr_renderarguments.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegExpValidator>
#include <QSpinBox>
#include <QTableWidget>

namespace {

constexpr int GroupCount = 15;
constexpr int MaxFrame = 99999;
constexpr int Gap = 20; // pixels

constexpr char RowProperty[] = "row";

int Below(const QWidget* pWidget)
{
    return pWidget->y() + pWidget->height();
}

} // namespace

VTSetArgument::VTSetArgument(QWidget* pForm, QTableWidget* pTaskTable)
    : m_form(pForm, VTIds::SetArgument)
    , m_pTaskTable(pTaskTable)
{
}

void VTSetArgument::InitWidgets()
{
    m_form.SetDialogFlags();
    FindWidgets();
    AddFrameRange(1);

    auto* pDigits = new QRegExpValidator(QRegExp(QStringLiteral("[0-9]+")), this);
    m_pLneImageHeight->setValidator(pDigits);
    m_pLneImageWidth->setValidator(pDigits);

    connect(m_pBtnClose, &QPushButton::clicked, m_form.Form(), &QWidget::close);
    connect(m_pBtnOk, &QPushButton::clicked, this, &VTSetArgument::TriggerArgumentOk);
    connect(m_pSpbGroup, QOverload<int>::of(&QSpinBox::valueChanged), this, &VTSetArgument::AddFrameRange);
}

void VTSetArgument::FindWidgets()
{
    m_pBtnClose = m_form.Find<QPushButton>(QStringLiteral("btnClose"));
    m_pLblJobName = m_form.Find<QLabel>(QStringLiteral("lblJobName"));
    m_pLblGroup = m_form.Find<QLabel>(QStringLiteral("lblGroup"));
    m_pSpbGroup = m_form.Find<QSpinBox>(QStringLiteral("spbGroup"));
    m_pWgtImageSize = m_form.Find<QWidget>(QStringLiteral("wgtImageSize"));
    m_pLblImageSize = m_form.Find<QLabel>(QStringLiteral("lblImageSize"));
    m_pLneImageWidth = m_form.Find<QLineEdit>(QStringLiteral("lneImageWidth"));
    m_pLneImageHeight = m_form.Find<QLineEdit>(QStringLiteral("lneImageHeight"));
    m_pChkPrerender = m_form.Find<QCheckBox>(QStringLiteral("chkPrerender"));
    m_pBtnOk = m_form.Find<QPushButton>(QStringLiteral("btnOk"));

    m_pSpbGroup->setRange(1, GroupCount);
    for (int i = 0; i < GroupCount; ++i) {
        const Group group {
            m_form.Find<QSpinBox>(QStringLiteral("spbStartFrame_%1").arg(i)),
            m_form.Find<QSpinBox>(QStringLiteral("spbEndFrame_%1").arg(i)),
            m_form.Find<QWidget>(QStringLiteral("wgtFrameRange_%1").arg(i)),
            m_form.Find<QLabel>(QStringLiteral("lblFrameRange_%1").arg(i)),
        };
        group.pStartFrame->setRange(1, MaxFrame);
        group.pEndFrame->setRange(1, MaxFrame);
        m_lstGroup.append(group);
    }
}

void VTSetArgument::ChangeSkin(QString strSkin)
{
    m_form.ApplySkin(strSkin);
}

void VTSetArgument::ChangeLanguage()
{
    if (!IsBound())
        return;
    m_pChkPrerender->setText(tr("Prerender"));
    m_pLblImageSize->setText(tr("Image size"));
    for (const Group& group : qAsConst(m_lstGroup))
        group.pCaption->setText(tr("Frame range"));
    m_pLblGroup->setText(tr("Group"));
    m_pBtnOk->setText(tr("Ok"));
}

void VTSetArgument::TriggerSetArgument()
{
    if (!IsBound() || !m_pTaskTable || m_pTaskTable->currentRow() < 0)
        return;
    const int nRow = m_pTaskTable->currentRow();
    QWidget* pForm = m_form.Form();
    pForm->setProperty(RowProperty, nRow);
    // The title keeps the task's id until the dialog is confirmed, because the row may hold another task by then.
    pForm->setWindowTitle(VTTableRows::Id(m_pTaskTable, nRow));
    ReadArguments(VTTableCells::Data(m_pTaskTable, nRow, VTTaskColumn::SceneFile).toList());
    const QTableWidgetItem* pName = m_pTaskTable->item(nRow, VTTaskColumn::Name);
    VTSetPlainText(m_pLblJobName, pName ? pName->text() : QString());
    m_form.Exec();
}

void VTSetArgument::ReadArguments(const QVariantList& lstArguments)
{
    m_pSpbGroup->setValue(lstArguments.size());
    for (int i = 0; i < m_pSpbGroup->value(); ++i) {
        const VTFrameRange range = VTRenderArguments::Frames(lstArguments, i);
        m_lstGroup.at(i).pStartFrame->setValue(range.nStart);
        m_lstGroup.at(i).pEndFrame->setValue(range.nEnd);
    }
    const VTImageArguments image = VTRenderArguments::Image(lstArguments, m_pSpbGroup->value() - 1);
    m_pChkPrerender->setChecked(image.bPrerender);
    m_pLneImageWidth->setText(image.strWidth);
    m_pLneImageHeight->setText(image.strHeight);
}

void VTSetArgument::TriggerArgumentOk()
{
    if (!IsBound())
        return;
    const VTImageArguments image {
        m_pLneImageWidth->text(), m_pLneImageHeight->text(), m_pChkPrerender->isChecked()};
    QVariantList lstArguments;
    for (int i = 0; i < m_pSpbGroup->value(); ++i) {
        const VTFrameRange range {m_lstGroup.at(i).pStartFrame->value(), m_lstGroup.at(i).pEndFrame->value()};
        if (!Accepts(range))
            return;
        lstArguments.append(VTRenderArguments::MakeGroup(i, range, image));
    }
    const QPointer<VTSetArgument> pSelf(this);
    StoreArguments(lstArguments);
    if (pSelf)
        m_form.Close();
}

/// Tells the user what is wrong with an invalid range; this object may be deleted meanwhile.
bool VTSetArgument::Accepts(const VTFrameRange& range) const
{
    const VTFrameCheck check = VTCheckFrames(range);
    if (check == VTFrameCheck::Valid)
        return true;
    if (m_pServices)
        VTPrompts(*m_pServices)
            .Notify(check == VTFrameCheck::Reversed ? tr("Start frame must be less than end frame!")
                                                    : tr("Can not submit more than 1000 frames"));
    return false;
}

void VTSetArgument::StoreArguments(const QVariantList& lstArguments)
{
    if (!m_pTaskTable)
        return;
    const int nRow = m_form.Form()->property(RowProperty).toInt();
    const QString strId = m_form.Form()->windowTitle();
    QTableWidgetItem* pArguments = m_pTaskTable->item(nRow, VTTaskColumn::SceneFile);
    if (!pArguments || !m_pTaskTable->item(nRow, VTTaskColumn::Name)
        || VTTableRows::Id(m_pTaskTable, nRow) != strId)
        return;
    pArguments->setData(Qt::UserRole, lstArguments);
    emit setArgument(strId, lstArguments);
}

void VTSetArgument::AddFrameRange(int nGroup)
{
    if (!IsBound())
        return;
    const QWidget* pLast = m_lstGroup.first().pRow;
    for (int i = 0; i < m_lstGroup.size(); ++i) {
        QWidget* pRow = m_lstGroup.at(i).pRow;
        const bool bShown = i < nGroup;
        pRow->setVisible(bShown);
        if (!bShown || i == 0)
            continue;
        pRow->move(pRow->x(), Below(pLast));
        pLast = pRow;
    }
    m_pWgtImageSize->move(m_pWgtImageSize->x(), Below(pLast));
    m_pChkPrerender->move(m_pChkPrerender->x(), Below(m_pWgtImageSize) + Gap);
    m_pBtnOk->move(m_pBtnOk->x(), Below(m_pChkPrerender) + Gap);
    m_form.Form()->setFixedHeight(Below(m_pBtnOk) + Gap);
}
