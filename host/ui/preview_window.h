#pragma once

#include "host/ui/picture_file.h"
#include "host/ui/skinned_form.h"

#include <QElapsedTimer>
#include <QList>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <memory>

class PictureSeries;
class PictureView;
class QKeySequence;
class QLabel;
class QPushButton;

/// Shows the pictures of a series one at a time, on the form "com.vtr.previewer", and plays them. Every button has a
/// key, which its tool tip names.
class PreviewWindow : public QObject
{
    Q_OBJECT

public:
    explicit PreviewWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);
    ~PreviewWindow() override;

    QWidget* Form() const { return m_form.Form(); }

    /// Shows the window with this picture, or with the reason why it cannot be shown. The series is the file's folder.
    void Open(const QString& file);

    /// @param name is the name of a picture in the series.
    void Open(const std::shared_ptr<PictureSeries>& series, const QString& name);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// Emitted in the reading thread when a file has been read.
    void Read(int generation, const PictureFile& picture);

private:
    void ConnectButtons();
    void AddKeys(const QList<QKeySequence>& keys, const std::function<void()>& action);
    void Turn(int step);
    void HandleNames();
    void TurnTo(int index);
    void PlayNext();
    void SetPlaying(bool isPlaying);
    void Load(const QString& name);
    void HandleFile(const QString& name, const QString& file);
    void HandleFailure(const QString& name, const QString& reason);
    void HandlePicture(int generation, const PictureFile& picture);
    void Display();
    void DisplayZoom();
    QString ErrorText() const;

    SkinnedForm m_form;
    QLabel* m_title;
    QLabel* m_size;
    QLabel* m_position;
    QLabel* m_zoom;
    QPushButton* m_previous;
    QPushButton* m_play;
    QPushButton* m_next;
    QPushButton* m_fit;
    QPushButton* m_actualSize;
    PictureView* m_view;
    std::shared_ptr<PictureSeries> m_series;
    QStringList m_names; // names of the series
    QString m_name;      // name of the picture that is shown or being loaded
    PictureFile m_shown;
    QString m_failure;    // why the series cannot provide the picture
    QTimer m_nextPicture; // active while the series is played
    QElapsedTimer m_sinceTurn;
    bool m_isPlaying = false;
    bool m_loading = false;
    int m_generation = 0; // counts the loaded files; results for earlier ones are dropped
    QThreadPool m_reader; // last member, because its destructor waits for the reading thread
};
