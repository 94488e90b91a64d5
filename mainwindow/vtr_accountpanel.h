#pragma once

#include <QVariantMap>

class QObject;
class VTRequests;
struct VTMainForm;
struct VTTimers;

/// The account panel: name and balances of the user.
class VTAccountPanel
{
public:
    struct Dependencies
    {
        QObject* pWindow; ///< has the slot GetUserInfo() for the timer
        const VTMainForm& form;
        const VTRequests& requests;
        const VTTimers& timers;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTAccountPanel(const Dependencies& dependencies);

    void ShowUser(const QString& strName) const;

    /// Requests the user's information every 30 seconds from now on. With each further call, every timeout sends one
    /// request more.
    void StartPolling() const;
    void StopPolling() const;

    void RequestUserInfo() const;

    /// Shows the balances of a user-info answer.
    void HandleUserInfoAnswer(int nRet, const QVariantMap& mapAnswer) const;

private:
    void ShowBalances(const QString& strMain, const QString& strCredits, bool bBound) const;

    Dependencies m_deps;
};
