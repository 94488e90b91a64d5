#include "mainwindow/vtr_mainform.h"

#include "common/vtr_formwidgets.h"
#include "common/vtr_ids.h"
#include "mainwindow/vtr_pagestate.h"

namespace {

/// Finds widgets by the name of the member that holds them.
class Finder
{
public:
    explicit Finder(QWidget* pForm)
        : m_pForm(pForm)
    {
    }

    template <typename Widget>
    void Find(Widget*& pWidget, const char* szName) const
    {
        pWidget = VTFindWidget<Widget>(m_pForm, VTIds::Client, QLatin1String(szName));
    }

private:
    QWidget* m_pForm;
};

#define VT_FIND(member) finder.Find(form.member, #member)

void FindChrome(VTMainForm& form, const Finder& finder)
{
    VT_FIND(btnSystemClose);
    VT_FIND(btnSystemMin);
    VT_FIND(btnSystemMaxmax);
    VT_FIND(btnSystemMaxnormal);
    VT_FIND(btnSettings);
    VT_FIND(btnSkin);
    VT_FIND(btnMessage);
    VT_FIND(btnLang);
}

void FindToolbar(VTMainForm& form, const Finder& finder)
{
    VT_FIND(btnRecover);
    VT_FIND(btnPause);
    VT_FIND(btnStop);
    VT_FIND(btnRestart);
    VT_FIND(btnSearch);
    VT_FIND(btnDelete);
    VT_FIND(btnFullRender);
    VT_FIND(btnSubmit);
    VT_FIND(chkAll);
}

void FindContent(VTMainForm& form, const Finder& finder)
{
    VT_FIND(myRender);
    VT_FIND(wgtGroup);
    VT_FIND(tbwContainer);
    VT_FIND(twtMyRender);
    VT_FIND(twtLocalTask);
    VT_FIND(twtDownload);
}

void FindAccountPanel(VTMainForm& form, const Finder& finder)
{
    VT_FIND(lblUserName);
    VT_FIND(lblRmb);
    VT_FIND(lblRmbU);
    VT_FIND(lblCyb);
    VT_FIND(lblCybU);
    VT_FIND(lblBalance);
    VT_FIND(lblHotline);
    VT_FIND(lblVersion);
    VT_FIND(lblVersionV);
    VT_FIND(lblChargeC);
    VT_FIND(lblCharge);
    VT_FIND(lblChargeV);
    VT_FIND(btnRecharge);
}

void FindPageBar(VTMainForm& form, const Finder& finder)
{
    VT_FIND(btnNextPage);
    VT_FIND(btnNextGroup);
    VT_FIND(btnPreGroup);
    VT_FIND(btnPrePage);
    constexpr std::array<const char*, 5> Names {
        "btnPageOne", "btnPageTwo", "btnPageThree", "btnPageFour", "btnPageFive"};
    for (std::size_t i = 0; i < Names.size(); ++i)
        finder.Find(form.btnPages.at(i), Names.at(i));
}

#undef VT_FIND

} // namespace

VTMainForm::VTMainForm(QWidget* pMainForm)
    : pForm(pMainForm)
{
    const Finder finder(pForm);
    FindChrome(*this, finder);
    FindToolbar(*this, finder);
    FindContent(*this, finder);
    FindAccountPanel(*this, finder);
    FindPageBar(*this, finder);
}

std::array<QPushButton*, 9> VTMainForm::PageButtons() const
{
    return {btnNextPage, btnNextGroup, btnPages[4], btnPages[3], btnPages[2], btnPages[1], btnPages[0],
        btnPreGroup, btnPrePage};
}

QTableWidget* VTMainForm::Table(int nTab) const
{
    switch (nTab) {
    case VTList::Jobs:
        return twtMyRender;
    case VTList::LocalTasks:
        return twtLocalTask;
    case VTList::Downloads:
        return twtDownload;
    default:
        return nullptr;
    }
}

void VTMainForm::RaiseOverlays() const
{
    for (QPushButton* btnPage : PageButtons())
        btnPage->raise();
    chkAll->raise();
    for (QPushButton* btnAction :
        {btnDelete, btnFullRender, btnPause, btnSearch, btnRecover, btnRestart, btnStop})
        btnAction->raise();
}
