#include "common/vtr_progressbar.h"
#include "tests/support/pictures.h"
#include "tests/support/test_tables.h"

#include <QStyleFactory>
#include <QtTest>
#include <QtWidgets>

#include <functional>

namespace {

/// Name of what changes in a bar that has been painted before, and the change.
const std::tuple<const char*, std::function<void(QProgressBar&)>> Changes[] = {
    {"nothing", [](QProgressBar&) {}},
    {"value", [](QProgressBar& bar) { bar.setValue(60); }},
    {"size", [](QProgressBar& bar) { bar.resize(120, 17); }},
    {"state", [](QProgressBar& bar) { bar.setEnabled(false); }},
    {"direction", [](QProgressBar& bar) { bar.setLayoutDirection(Qt::RightToLeft); }},
    {"sheet", [](QProgressBar& bar) { bar.setStyleSheet("QProgressBar::chunk { background: blue; }"_s); }},
    {"palette", [](QProgressBar& bar) { bar.setPalette(QPalette(Qt::darkRed, Qt::yellow)); }},
    {"text", [](QProgressBar& bar) { bar.setFormat("%v of %m"_s); }},
    {"no text", [](QProgressBar& bar) { bar.setTextVisible(false); }},
    {"busy", [](QProgressBar& bar) { bar.setRange(0, 0); }},
    {"style of the parent",
        [](QProgressBar& bar) {
            bar.parentWidget()->setStyleSheet("QProgressBar { border: 3px solid green; }"_s);
        }},
    {"palette of the parent",
        [](QProgressBar& bar) { bar.parentWidget()->setPalette(QPalette(Qt::darkRed, Qt::yellow)); }},
    {"font of the parent",
        [](QProgressBar& bar) { bar.parentWidget()->setFont(QFont("DejaVu Sans"_s, 14)); }},
};

} // namespace

/// Bars whose frames and chunks come from pictures look like those that the style draws.
class TestProgressBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setStyle(QStyleFactory::create("Fusion"_s)); }

    void LooksLikeAPlainBarAfterAnyChange_data() { AddRows(Changes); }
    void LooksLikeAPlainBarAfterAnyChange()
    {
        const auto& [name, change] = Row(Changes);
        QImage pictures[2];
        for (const bool isPlain : {true, false}) {
            QWidget parent;
            parent.resize(200, 60);
            QProgressBar* bar = isPlain ? new QProgressBar : new VTProgressBar;
            bar->setParent(&parent);
            bar->setGeometry(5, 5, 100, 20);
            bar->setRange(0, 100);
            bar->setValue(40);
            parent.show();
            parent.grab();
            change(*bar);
            pictures[isPlain] = parent.grab().toImage();
        }
        QVERIFY(LookAlike(pictures[0], pictures[1]));
    }

    void SharesPicturesOfBarsThatLookAlike()
    {
        QWidget parent;
        VTProgressBar bars[2];
        for (VTProgressBar& bar : bars) {
            bar.setParent(&parent);
            bar.resize(100, 20);
        }
        const auto Picture = [&](int value) {
            QStringList keys;
            for (VTProgressBar& bar : bars) {
                QStyleOptionProgressBar option;
                option.initFrom(&bar);
                option.maximum = 100;
                option.progress = value;
                keys << QString::number(VTBarPictures::Of(&parent).Picture(bar, option, 1).cacheKey());
            }
            return keys;
        };
        const QStringList first = Picture(1);
        QCOMPARE(first.at(0), first.at(1));
        QVERIFY(Picture(2).at(0) != first.at(0));
        QCOMPARE(Picture(1), first);
        parent.setStyleSheet("QProgressBar { border: 3px solid green; }"_s);
        QVERIFY(Picture(1).at(0) != first.at(0));
    }
};

QTEST_MAIN(TestProgressBar)
#include "tst_common_progressbar.moc"
