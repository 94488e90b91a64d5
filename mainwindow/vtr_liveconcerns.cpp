#include "mainwindow/vtr_liveconcerns.h"

#include "mainwindow/vtr_concerns.h"

VTLiveConcerns::Call::Call(VTLiveConcerns& concerns)
    : m_concerns(concerns)
{
    ++m_concerns.m_nCalls;
}

VTLiveConcerns::Call::~Call()
{
    if (--m_concerns.m_nCalls > 0)
        return;
    m_concerns.DeleteDropped();
    if (const std::function<void()> action = m_concerns.m_whenIdle)
        action();
}

VTLiveConcerns::VTLiveConcerns() = default;
VTLiveConcerns::~VTLiveConcerns() = default;

void VTLiveConcerns::Set(std::unique_ptr<VTConcerns> pConcerns)
{
    m_pCurrent = std::move(pConcerns);
}

void VTLiveConcerns::Drop()
{
    if (!m_pCurrent)
        return;
    // Hiding the forms sends events. Their receivers may call back and must find no concerns then.
    const Call call(*this);
    m_lstDropped.push_back(std::move(m_pCurrent));
    m_lstDropped.back()->Retire();
}

void VTLiveConcerns::DeleteDropped()
{
    std::vector<std::unique_ptr<VTConcerns>> lstDropped;
    lstDropped.swap(m_lstDropped);
    for (const std::unique_ptr<VTConcerns>& pConcerns : lstDropped)
        m_lstDeferred += pConcerns->DeferredDeletions();
}
