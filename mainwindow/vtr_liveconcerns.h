#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

struct VTConcerns;

/// The concerns of a window. Any call into them may end the window.
///
/// Services, forms and questions may call back from inside a call. Concerns that are dropped meanwhile lose their services
/// and session at once, but live until the outermost call returns.
class VTLiveConcerns
{
public:
    /// A call into the concerns; it runs for as long as this object lives.
    class Call
    {
    public:
        explicit Call(VTLiveConcerns& concerns);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        VTLiveConcerns& m_concerns;
    };

    VTLiveConcerns();
    ~VTLiveConcerns();
    VTLiveConcerns(const VTLiveConcerns&) = delete;
    VTLiveConcerns& operator=(const VTLiveConcerns&) = delete;

    /// The concerns in use; null when there are none.
    VTConcerns* Current() const { return m_pCurrent.get(); }
    void Set(std::unique_ptr<VTConcerns> pConcerns);
    void Drop();

    bool IsBusy() const { return m_nCalls > 0; }
    /// @param action runs at the end of the outermost call; it may delete this object.
    void WhenIdle(const std::function<void()>& action) { m_whenIdle = action; }

    /// Dialog controllers and forms that dropped concerns have left to the event loop.
    const QVector<QPointer<QObject>>& DeferredDeletions() const { return m_lstDeferred; }

private:
    void DeleteDropped();

    std::unique_ptr<VTConcerns> m_pCurrent;
    std::vector<std::unique_ptr<VTConcerns>> m_lstDropped;
    QVector<QPointer<QObject>> m_lstDeferred;
    std::function<void()> m_whenIdle;
    int m_nCalls = 0;
};
