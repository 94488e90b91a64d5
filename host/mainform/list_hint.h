#pragma once

#include <QTimer>
#include <QWidget>

class QAbstractItemView;
class QLabel;
class QPushButton;

/// English texts, translated in the context "ListHint".
struct HintTexts
{
    const char* heading = nullptr;
    const char* text = nullptr;
    const char* button = nullptr; ///< null for none
};

/// Covers the rows of a table or list while it has none. The list owns it.
class ListHint : public QWidget
{
    Q_OBJECT

public:
    explicit ListHint(QAbstractItemView* list);

    /// @param texts without a heading hide the hint.
    void SetTexts(const HintTexts& texts);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void ButtonClicked();

protected:
    void changeEvent(QEvent* event) override;

private:
    void Translate();
    void Update();

    QAbstractItemView* m_list;
    HintTexts m_texts;
    QLabel* m_heading;
    QLabel* m_text;
    QPushButton* m_button;
    QTimer m_settling; // runs out when the list has been filled
};
