#pragma once

#include "host/space/space_model.h"
#include "host/ui/skinned_form.h"

#include <QTimer>

class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;

/// Shows what the account holds on the farm, on the form "com.vtr.space": how much of its quota is used and by which
/// jobs. Jobs can be checked and deleted. While it is open, it requests fresh figures every few seconds.
class SpaceDialog : public QObject
{
    Q_OBJECT

public:
    explicit SpaceDialog(VTUiLoaderInterface* loader, QObject* parent = nullptr);
    ~SpaceDialog() override;

    QWidget* Form() const { return m_form.Form(); }

    /// How many jobs the user wants to see at most.
    int WantedJobs() const { return m_wantedJobs; }

    /// Returns at once.
    void Open();

    /// Closes the dialog and forgets everything, because it belongs to one account.
    void Close();

    void SetSpace(const FarmSpace& space);
    /// @param reason a sentence for the user. The figures known so far stay.
    void SetFailure(const QString& reason);
    /// While a change is on its way, no other can be requested.
    void SetBusy(bool isBusy);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void RefreshRequested();
    /// WantedJobs() has grown.
    void MoreRequested();
    /// @param jobs at least one.
    void DeleteRequested(const std::vector<FarmSpace::Job>& jobs);
    /// The files that no job needs are to be removed.
    void FreeRequested(qint64 bytes);

private:
    void SetUpTable();
    void ConnectButtons();
    void RequestDeletion();
    void RequestMore();
    void ToggleRow(int row);
    void Display();
    void DisplayChecked();
    QString Details() const;

    SkinnedForm m_form;
    QLabel* m_used;
    QLabel* m_details;
    QLabel* m_trouble;
    QLabel* m_checked;
    QProgressBar* m_bar;
    QTableView* m_table;
    QPushButton* m_more;
    QPushButton* m_free;
    QPushButton* m_delete;
    SpaceModel m_model;
    std::optional<FarmSpace> m_space;
    QString m_failure;
    bool m_isBusy = false;
    int m_wantedJobs;
    QTimer m_refresh;
};
