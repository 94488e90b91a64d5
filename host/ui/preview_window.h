#pragma once

#include "host/ui/picture_file.h"
#include "host/ui/skinned_form.h"

#include <QPixmap>
#include <QThreadPool>
#include <QTimer>

class QLabel;
class QPushButton;
class QScrollArea;

/// Shows the pictures of a folder one at a time, on the form "com.vtr.previewer", fitted into the window or in actual size.
/// The arrow keys show the previous and next picture, Escape closes the window.
class PreviewWindow : public QObject
{
    Q_OBJECT

public:
    explicit PreviewWindow(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// Shows the window with this picture, or a sentence that says why it cannot be shown.
    void Open(const QString& file);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// Emitted in the reading thread when a file has been read.
    void Read(int generation, const PictureFile& picture);

private:
    void AddShortcut(int key, void (PreviewWindow::*slot)());
    void Previous() { Turn(-1); }
    void Next() { Turn(1); }
    void Close() { Form()->close(); }
    void Turn(int step);
    void Load(const QString& file);
    void HandlePicture(int generation, const PictureFile& picture);
    void Display();
    void DisplayPicture(Qt::TransformationMode mode);
    QString ErrorText() const;

    SkinnedForm m_form;
    QLabel* m_title;
    QScrollArea* m_area;
    QLabel* m_picture;
    QLabel* m_size;
    QLabel* m_position;
    QPushButton* m_previous;
    QPushButton* m_next;
    QPushButton* m_actualSize;
    QStringList m_files; // all pictures of the folder
    QString m_file;
    PictureFile m_shown;
    QPixmap m_pixmap;
    QTimer m_settled; // runs while the window is being resized
    bool m_loading = false;
    int m_generation = 0; // of the file that is being loaded; results for earlier ones are dropped
    QThreadPool m_reader; // last member, because its destructor waits for the reading thread
};
