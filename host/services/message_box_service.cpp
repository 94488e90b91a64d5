#include "host/services/message_box_service.h"

#include "host/ui/message_text.h"
#include "host/ui/skinned_form.h"

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

constexpr int MaximumTitleWidth = 340;
constexpr int AreaColumns = 60; // estimated characters per line, for the height of the area
constexpr int AreaMargin = 12;
constexpr int MinimumAreaLines = 3;
constexpr int MaximumAreaLines = 12;

/// Sorts names by the number at their end: "btnMessageBox_2" comes before "btnMessageBox_10".
QStringList InOrder(QStringList names)
{
    std::sort(names.begin(), names.end(), [](const QString& one, const QString& other) {
        return std::make_pair(one.size(), one) < std::make_pair(other.size(), other);
    });
    return names;
}

void FillTitle(const SkinnedForm& box, const QString& title)
{
    auto* label = box.Find<QLabel>("lblTitle");
    label->ensurePolished();
    label->setText(label->fontMetrics().elidedText(title.simplified(), Qt::ElideRight, MaximumTitleWidth));
    box.Form()->setWindowTitle(title);
}

void FillText(const SkinnedForm& box, const MessageText& message)
{
    auto* label = box.Find<QLabel>("lblText");
    label->setText(message.label);
    label->setVisible(!message.label.isEmpty());
    auto* area = box.Find<QPlainTextEdit>("txtDetail");
    area->setPlainText(message.area);
    area->setVisible(!message.area.isEmpty());
    const int lines = message.area.count(QLatin1Char('\n')) + 1 + message.area.size() / AreaColumns;
    const int shown = qBound(MinimumAreaLines, lines, MaximumAreaLines);
    area->setFixedHeight(shown * area->fontMetrics().lineSpacing() + 2 * AreaMargin);
}

void FillKind(const SkinnedForm& box, int kind)
{
    const QString name
        = kind == MessageBoxService::Question ? QStringLiteral("question") : QStringLiteral("notice");
    auto* label = box.Find<QLabel>("lblIcon");
    label->setProperty("kind", name);
    // The style sheet chooses the picture by this property, which is evaluated only when a sheet is set.
    label->setStyleSheet(label->styleSheet());
}

/// @return the new button; a click stores its name in `pressed` and closes the dialog.
QPushButton* AddButton(
    QDialog* dialog, QWidget* row, const QString& name, const QString& caption, QString* pressed)
{
    auto* button = new QPushButton(caption, row);
    button->setObjectName(name);
    button->setMinimumSize(96, 34);
    row->layout()->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, dialog, [dialog, name, pressed] {
        *pressed = name;
        dialog->accept();
    });
    return button;
}

} // namespace

MessageBoxService::MessageBoxService(VTUiLoaderInterface* loader, QObject* parent)
    : ServiceBase(parent)
    , m_loader(loader)
{
}

QString MessageBoxService::ShowMessage(int kind, const QString& title, const QString& text, const QIcon& icon,
    const QString& detail, const QVariantHash& buttons, bool list)
{
    const SkinnedForm box(m_loader, QStringLiteral("com.vtr.messagebox"));
    auto* dialog = qobject_cast<QDialog*>(box.Form());
    FillTitle(box, title);
    FillText(box, ArrangeMessage(text, detail, list));
    FillKind(box, kind);
    if (!icon.isNull())
        dialog->setWindowIcon(icon);
    QObject::connect(box.Find<QPushButton>("btnClose"), &QPushButton::clicked, dialog, &QDialog::reject);

    QString pressed;
    QVector<QPushButton*> row;
    QVariantHash captions = buttons;
    if (captions.isEmpty())
        captions.insert(QStringLiteral("btnMessageBox_1"), tr("Ok"));
    const QStringList names = InOrder(captions.keys());
    for (const QString& name : names)
        row.append(AddButton(
            dialog, box.Find<QWidget>("wgtButtons"), name, captions.value(name).toString(), &pressed));
    row.constLast()->setProperty("role", QStringLiteral("primary"));
    // Enter may be pressed before the question is read, so it must refuse.
    QPushButton* first = kind == MessageBoxService::Question ? row.constFirst() : row.constLast();
    first->setDefault(true);
    first->setFocus();
    dialog->adjustSize();
    return box.Exec() ? pressed : QString();
}
