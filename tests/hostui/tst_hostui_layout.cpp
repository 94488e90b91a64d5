#include "host/ui/form_layout.h"
#include "host/ui/frameless_window.h"

#include <QMouseEvent>
#include <QTemporaryFile>
#include <QtTest>
#include <QWidget>

namespace {

const QRect Child(100, 50, 200, 40);

FormLayout ReadFrom(const QByteArray& text)
{
    QTemporaryFile file;
    if (!file.open() || file.write(text) != text.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return FormLayout::Read(file.fileName());
}

QWidget* AddChild(QWidget* form, const char* name, const QRect& geometry)
{
    auto* child = new QWidget(form);
    child->setObjectName(QLatin1String(name));
    child->setGeometry(geometry);
    return child;
}

} // namespace

/// Where children of a form go, and how a window without a frame is moved and resized.
class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void PlacesChildren_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QRect>("place");
        const auto row = [](const char* name, const QByteArray& text, const QRect& place = Child) {
            QTest::newRow(name) << text << place;
        };
        row("empty", {});
        row("left", "; a comment\n[absent]\nleft=1\n[list]\nleft=10\n", {10, 50, 200, 40});
        row("right", "[list]\nright=10\n", {790, 50, 200, 40});
        row("left and right", "[list]\nleft=10\nright=20\n", {10, 50, 970, 40});
        row("width", "[list]\nwidth=300\n", {100, 50, 300, 40});
        row("right and width", "[list]\nright=10\nwidth=300\n", {690, 50, 300, 40});
        row("all three", "[list]\nleft=10\nright=20\nwidth=300\n", {10, 50, 300, 40});
        row("form too narrow", "[list]\nleft=600\nright=600\n", {600, 50, 0, 40});
        row("negative width", "[list]\nright=10\nwidth=-5\n", {990, 50, 0, 40});
        row("bottom and height", "[list]\nbottom=10\nheight=30\n", {100, 760, 200, 30});
        row("all around", "[list]\nleft=10\nright=20\ntop=5\nbottom=10\n", {10, 5, 970, 785});
        row("words for numbers", "[list]\nleft=wide\nright=\nwidth=1e\n");
        row("unknown keys", "[list]\nmiddle=10\n");
        row("follows nobody", "[list]\nwith=nobody\n");
        row("follows itself", "[list]\nwith=list\n");
        row("rubbish", QByteArray("\x00\xff[[[=\n]==;", 11));
        row("the form's own name", "[form]\nleft=100\n");
    }

    void PlacesChildren()
    {
        QFETCH(QByteArray, text);
        QFETCH(QRect, place);
        const QRect whole(0, 0, 1000, 800);
        QWidget form;
        form.setObjectName(QStringLiteral("form"));
        form.setGeometry(whole);
        QWidget* list = AddChild(&form, "list", Child);
        ReadFrom(text).Apply(&form);
        QCOMPARE(list->geometry(), place);

        list->setGeometry(Child);
        list->setFixedSize(Child.size());
        ReadFrom(text).Apply(&form);
        QCOMPARE(list->geometry(), place);
        QCOMPARE(list->minimumSize(), list->maximumSize());
        QCOMPARE(form.geometry(), whole);
    }

    void PageBarKeepsItsOrder()
    {
        QWidget form;
        form.resize(400, 300);
        const QWidget* next = AddChild(&form, "next", {350, 260, 40, 30});
        QWidget* page = AddChild(&form, "page", {310, 260, 40, 30});
        const FormLayout layout = ReadFrom("[next]\nright=10\nbottom=10\n[page]\nwith=next\nbottom=10\n");

        form.resize(700, 400);
        layout.Apply(&form);
        QCOMPARE(next->pos(), QPoint(650, 360));
        QCOMPARE(page->pos(), QPoint(610, 360));

        page->move(500, page->y()); // moved by somebody else meanwhile
        form.resize(600, 400);
        layout.Apply(&form);
        QCOMPARE(next->pos(), QPoint(550, 360));
        QCOMPARE(page->pos(), QPoint(400, 360));
    }

    void DragsEdgesAndTitle_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("delta");
        QTest::addColumn<QRect>("main");
        QTest::addColumn<QRect>("dialog");
        const QRect start(100, 100, 400, 300);
        const auto row = [&](const char* name, const QPoint& from, const QPoint& delta, const QRect& main) {
            const bool isTitle = from.y() < 44;
            QTest::newRow(name) << from << delta << main << (isTitle ? start.translated(delta) : start);
        };
        row("middle", {200, 150}, {30, 99}, start);
        row("title", {200, 20}, {40, 30}, {140, 130, 400, 300});
        row("hardly", {399, 150}, {4, 4}, start);
        row("just inside", {5, 150}, {30, 99}, start);
        row("left", {4, 150}, {30, 99}, {130, 100, 370, 300});
        row("right", {399, 150}, {30, 99}, {100, 100, 430, 300});
        row("top", {200, 0}, {30, -50}, {100, 50, 400, 350});
        row("bottom", {200, 296}, {30, 50}, {100, 100, 400, 350});
        row("corner", {0, 10}, {-15, -16}, {85, 84, 415, 316});
        row("other corner", {390, 299}, {15, 16}, {100, 100, 415, 316});
        row("left too far", {0, 150}, {900, 0}, {300, 100, 200, 300});
        row("right too far", {399, 150}, {-900, 0}, {100, 100, 200, 300});
        row("top too far", {200, 0}, {0, 900}, {100, 250, 400, 150});
        row("bottom too far", {200, 299}, {0, -900}, {100, 100, 400, 150});
    }

    void DragsEdgesAndTitle()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, delta);
        for (const auto kind : {FramelessWindow::Main, FramelessWindow::Dialog}) {
            QWidget form;
            form.setMinimumSize(200, 150);
            form.setGeometry(100, 100, 400, 300);
            new FramelessWindow(&form, kind);
            const QPoint global = form.mapToGlobal(from);
            const QPoint to = from + delta;
            QMouseEvent press(QEvent::MouseButtonPress, from, global, Qt::LeftButton, Qt::LeftButton, {});
            QMouseEvent move(QEvent::MouseMove, to, global + delta, Qt::NoButton, Qt::LeftButton, {});
            QMouseEvent release(QEvent::MouseButtonRelease, to, global + delta, Qt::LeftButton, {}, {});
            QMouseEvent after(QEvent::MouseMove, to, global, Qt::NoButton, Qt::LeftButton, {});
            for (QMouseEvent* event : {&press, &move, &release, &after})
                QCoreApplication::sendEvent(&form, event);
            QTEST(form.geometry(), kind == FramelessWindow::Main ? "main" : "dialog");
        }
    }
};

QTEST_MAIN(TestLayout)
#include "tst_hostui_layout.moc"
