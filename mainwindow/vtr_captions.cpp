#include "mainwindow/vtr_captions.h"

#include "common/vtr_jobrow.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"
#include "mainwindow/vtr_submitlist.h"

void VTCaptions::Retranslate(const VTMainForm& form)
{
    form.pForm->setWindowTitle(tr("QuillStar Client"));
    SetLabels(form);
    SetButtons(form);
    SetToolTips(form);
    SetTabs(form);
    form.twtMyRender->setHorizontalHeaderLabels(VTJobHeaders());
    form.twtLocalTask->setHorizontalHeaderLabels(VTSubmitList::Headers());
    form.twtDownload->setHorizontalHeaderLabels(VTDownloadList::Headers());
}

void VTCaptions::SetLabels(const VTMainForm& form)
{
    form.lblBalance->setText(tr("Balance"));
    form.lblRmbU->setText(tr("RMB"));
    form.lblCybU->setText(tr("credits"));
    form.lblHotline->setText(tr("Service hotline"));
    form.lblVersion->setText(tr("Version"));
    form.lblChargeC->setText(tr("Charge"));
    form.lblCharge->setText(tr("Cost"));
    form.chkAll->setText(tr("Select all"));
}

void VTCaptions::SetButtons(const VTMainForm& form)
{
    form.btnRecover->setText(tr("Recover"));
    form.btnPause->setText(tr("Stop"));
    form.btnStop->setText(tr("Stop"));
    form.btnRestart->setText(tr("Restart"));
    form.btnDelete->setText(tr("Delete"));
    form.btnFullRender->setText(tr("Full render"));
    form.btnSearch->setText(tr("Search"));
    form.btnSubmit->setText(tr("Submit"));
    form.btnRecharge->setText(tr("Recharge"));
}

void VTCaptions::SetToolTips(const VTMainForm& form)
{
    form.btnRecover->setToolTip(tr("Recover"));
    form.btnPause->setToolTip(tr("Stop the checked jobs"));
    form.btnRestart->setToolTip(tr("Restart the checked jobs"));
    form.btnDelete->setToolTip(tr("Delete the checked rows"));
    form.btnFullRender->setToolTip(tr("Render all frames of the checked jobs"));
    form.btnSearch->setToolTip(tr("Search jobs"));
    form.btnSubmit->setToolTip(tr("Submit a scene"));
    form.btnSystemClose->setToolTip(tr("Quit"));
    form.btnSystemMin->setToolTip(tr("Minimize to the tray"));
    form.btnSystemMaxmax->setToolTip(tr("Restore"));
    form.btnSystemMaxnormal->setToolTip(tr("Maximize"));
    form.btnSettings->setToolTip(tr("Settings"));
    form.btnSkin->setToolTip(tr("Skin"));
    form.btnMessage->setToolTip(tr("Messages"));
    form.btnLang->setToolTip(tr("Language"));
    form.btnPrePage->setToolTip(tr("Previous page"));
    form.btnNextPage->setToolTip(tr("Next page"));
    form.btnPreGroup->setToolTip(tr("Previous five pages"));
    form.btnNextGroup->setToolTip(tr("Next five pages"));
}

void VTCaptions::SetTabs(const VTMainForm& form)
{
    form.tbwContainer->setTabText(VTList::Jobs, tr("My Render"));
    form.tbwContainer->setTabText(VTList::LocalTasks, tr("Local Task"));
    form.tbwContainer->setTabText(VTList::Downloads, tr("Download"));
}
