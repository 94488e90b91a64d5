#include "common/vtr_celldelegate.h"
#include "tests/support/pictures.h"
#include "tests/support/test_tables.h"

#include <QProxyStyle>
#include <QStyleFactory>
#include <QtTest>
#include <QtWidgets>

namespace {

/// Records the texts that it draws itself.
class WatchedStyle : public QProxyStyle
{
    Q_OBJECT

public:
    WatchedStyle()
        : QProxyStyle(QStyleFactory::create("Fusion"_s))
    {
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override
    {
        const auto* cell = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (element == CE_ItemViewItem && cell && !cell->text.isEmpty())
            texts.append(cell->text);
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    mutable QStringList texts;
};

/// Name, change of a table whose cells have been painted before, and the cells that the style paints.
const std::tuple<const char*, std::function<void(QTableWidget&)>, QString> Changes[] = {
    {"nothing", [](QTableWidget&) {}, {}},
    {"text", [](QTableWidget& table) { table.item(0, 0)->setText("other"_s); }, {}},
    {"too wide", [](QTableWidget& table) { table.item(0, 0)->setText("much too wide for its column"_s); },
        "much too wide for its column"_s},
    {"lines", [](QTableWidget& table) { table.item(0, 0)->setText("a\nb"_s); },
        QString("a"_s + QChar(QChar::LineSeparator) + "b"_s)},
    {"blanks", [](QTableWidget& table) { table.item(0, 0)->setText("  "_s); }, {}},
    {"selection", [](QTableWidget& table) { table.selectRow(0); }, {}},
    {"disabled", [](QTableWidget& table) { table.setEnabled(false); }, {}},
    {"right to left", [](QTableWidget& table) { table.setLayoutDirection(Qt::RightToLeft); }, {}},
    {"alignment",
        [](QTableWidget& table) { table.item(0, 0)->setTextAlignment(Qt::AlignBottom | Qt::AlignRight); },
        {}},
    {"colours", [](QTableWidget& table) { table.setPalette(QPalette(Qt::darkRed, Qt::yellow)); }, {}},
    {"font", [](QTableWidget& table) { table.setFont(QFont("DejaVu Serif"_s, 13)); }, {}},
};

} // namespace

/// Cells that paint their texts themselves look as if the style painted them, which paints the others.
class TestCellDelegate : public QObject
{
    Q_OBJECT

private slots:
    void LooksLikeThePlainDelegateAfterAnyChange_data() { AddRows(Changes); }
    void LooksLikeThePlainDelegateAfterAnyChange()
    {
        const auto& [name, change, byStyle] = Row(Changes);
        QImage pictures[2];
        for (const bool isPlain : {true, false}) {
            WatchedStyle style;
            QTableWidget table(1, 4);
            table.setStyle(&style);
            table.resize(450, 80);
            if (!isPlain)
                table.setItemDelegate(new VTCellDelegate(&table));
            const QPair<const char*, int> cells[] = {{"left", int(Qt::AlignLeft | Qt::AlignVCenter)},
                {"centre", int(Qt::AlignCenter)}, {"right", int(Qt::AlignRight | Qt::AlignTop)}, {"", 0}};
            for (int column = 0; column < 4; ++column) {
                auto* item = new QTableWidgetItem(QLatin1String(cells[column].first));
                item->setTextAlignment(cells[column].second);
                table.setItem(0, column, item);
            }
            table.show();
            table.viewport()->grab();
            change(table);
            table.viewport()->grab(); // finds out whether it can paint such cells itself
            style.texts.clear();
            pictures[isPlain] = table.viewport()->grab().toImage();
            if (!isPlain)
                QCOMPARE(style.texts.join(","_s), byStyle);
        }
        QVERIFY(LookAlike(pictures[0], pictures[1]));
    }
};

QTEST_MAIN(TestCellDelegate)
#include "tst_common_celldelegate.moc"
