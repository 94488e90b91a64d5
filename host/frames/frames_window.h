#pragma once

#include "host/farmclient/farm_access.h"
#include "host/frames/frame_model.h"
#include "host/frames/frame_requests.h"
#include "host/frames/priority_field.h"
#include "host/frames/thumbnails.h"
#include "host/ui/skinned_form.h"

#include <QTimer>

#include <memory>

class ChartView;
class JobPictures;
class PictureSeries;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableView;

/// Shows the frames of one job, on the form "com.vtr.frames": a table, the log of the current frame, and a chart of the
/// frames' times or of the account's spending. It follows the job while it is open.
class FramesWindow : public QObject
{
    Q_OBJECT

public:
    explicit FramesWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);
    ~FramesWindow() override;

    QWidget* Form() const { return m_form.Form(); }

    /// The window closes when nobody is signed in.
    void SetAccess(const FarmAccess& access);

    /// @param name is shown in the title.
    /// @param folder is the folder of the job's downloads, below the account's folder.
    void Open(const QString& job, const QString& name, const QString& folder);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void PreviewRequested(const std::shared_ptr<PictureSeries>& series, const QString& name);

private:
    void SetUpTable();
    void ConnectButtons();
    void ConnectAnswers();
    void Refresh();
    void HandleFrames(const FramesAnswer& answer);
    void HandleLog(int number, const QString& log);
    void HandlePriority(const QString& job, const QString& refusal);
    void HandleFailure(const QString& reason);
    void HandleCurrentFrame();
    void Select(int row);
    void OpenPicture();
    void FitColumns();
    void WantThumbnails();
    void Display();
    void DisplaySummary();
    void DisplayFrame();
    void DisplayChart();
    int CurrentRow() const;

    SkinnedForm m_form;
    QLabel* m_summary;
    QLabel* m_trouble;
    QLabel* m_frame;
    QTableView* m_table;
    QPlainTextEdit* m_log;
    QPushButton* m_openPicture;
    QPushButton* m_times;
    ChartView* m_chart;
    PriorityField m_priority;
    FrameModel m_model;
    FrameRequests m_requests;
    Thumbnails m_thumbnails;
    std::shared_ptr<JobPictures> m_pictures;
    FarmAccess m_access;
    QString m_job;
    QString m_name;
    FramesAnswer m_answer; // the latest answer; its frames are in the model
    SpendingAnswer m_spending;
    Frame m_shown; // the frame whose log is shown
    bool m_hasLog = false;
    QString m_failure; // the reason why the latest request failed
    QString m_refusal; // the reason why the priority could not be changed
    QTimer m_refresh;
    QTimer m_chosen; // runs while the user moves through the table
    QTimer m_scrolled;
};
