#include "form_layout.h"
#include "frameless_window.h"

#include <QSignalSpy>
#include <QTemporaryFile>
#include <QtTest>
#include <QWidget>

namespace {

const QSize Form(1000, 800);
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

Q_DECLARE_METATYPE(AnchorRule)
Q_DECLARE_METATYPE(Qt::Edges)

class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void AnchorsOfAnAxis_data();
    void AnchorsOfAnAxis();
    void ChildrenFollowTheForm();
    void FixedSizeChildGetsItsNewSize();
    void PageBarKeepsItsOrder();
    void BadFilesPlaceNothing_data();
    void BadFilesPlaceNothing();
    void EdgesUnderThePointer_data();
    void EdgesUnderThePointer();
    void DraggingEdges_data();
    void DraggingEdges();
};

void TestLayout::AnchorsOfAnAxis_data()
{
    QTest::addColumn<AnchorRule>("rule");
    QTest::addColumn<QRect>("place");
    const std::optional<int> none;
    const auto across = [&](std::optional<int> left, std::optional<int> right, std::optional<int> width) {
        return AnchorRule {left, right, width, none, none, none, QString()};
    };
    QTest::newRow("no rule") << AnchorRule() << Child;
    QTest::newRow("left") << across(10, none, none) << QRect(10, 50, 200, 40);
    QTest::newRow("right") << across(none, 10, none) << QRect(790, 50, 200, 40);
    QTest::newRow("left and right") << across(10, 20, none) << QRect(10, 50, 970, 40);
    QTest::newRow("width") << across(none, none, 300) << QRect(100, 50, 300, 40);
    QTest::newRow("right and width") << across(none, 10, 300) << QRect(690, 50, 300, 40);
    QTest::newRow("all three") << across(10, 20, 300) << QRect(10, 50, 300, 40);
    QTest::newRow("form too narrow") << across(600, 600, none) << QRect(600, 50, 0, 40);
    QTest::newRow("negative width") << across(none, 10, -5) << QRect(990, 50, 0, 40);
    QTest::newRow("bottom") << AnchorRule {none, none, none, none, 10, none, QString()}
                            << QRect(100, 750, 200, 40);
    QTest::newRow("top and bottom") << AnchorRule {none, none, none, 5, 10, none, QString()}
                                    << QRect(100, 5, 200, 785);
}

void TestLayout::AnchorsOfAnAxis()
{
    QFETCH(AnchorRule, rule);
    QFETCH(QRect, place);
    QCOMPARE(Anchored(Child, Form, rule), place);
}

void TestLayout::ChildrenFollowTheForm()
{
    QWidget form;
    form.resize(400, 300);
    const QWidget* list = AddChild(&form, "list", {10, 10, 380, 280});
    const QWidget* footer = AddChild(&form, "footer", {10, 270, 100, 20});
    const QWidget* free = AddChild(&form, "free", {50, 60, 70, 80});
    const FormLayout layout = ReadFrom(
        "; a comment\n[list]\nleft=10\nright=10\ntop=10\nbottom=10\n[footer]\nbottom=10\n[absent]\nleft=1\n");

    form.resize(600, 500);
    layout.Apply(&form);
    QCOMPARE(list->geometry(), QRect(10, 10, 580, 480));
    QCOMPARE(footer->geometry(), QRect(10, 470, 100, 20));
    QCOMPARE(free->geometry(), QRect(50, 60, 70, 80));
}

void TestLayout::FixedSizeChildGetsItsNewSize()
{
    QWidget form;
    QWidget* list = AddChild(&form, "list", {10, 10, 100, 100});
    list->setFixedSize(100, 100);
    form.resize(600, 500);
    ReadFrom("[list]\nleft=10\nright=20\ntop=10\nbottom=30\n").Apply(&form);
    QCOMPARE(list->geometry(), QRect(10, 10, 570, 460));
    QCOMPARE(list->minimumSize(), QSize(570, 460));
    QCOMPARE(list->maximumSize(), QSize(570, 460));
}

void TestLayout::PageBarKeepsItsOrder()
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

void TestLayout::BadFilesPlaceNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("words for numbers") << QByteArray("[list]\nleft=wide\nright=\nwidth=1e\n");
    QTest::newRow("unknown keys") << QByteArray("[list]\nmiddle=10\n");
    QTest::newRow("follows nobody") << QByteArray("[list]\nwith=nobody\n");
    QTest::newRow("follows itself") << QByteArray("[list]\nwith=list\n");
    QTest::newRow("rubbish") << QByteArray("\x00\xff[[[=\n]==;", 11);
    QTest::newRow("the form's own name") << QByteArray("[form]\nleft=100\n");
}

void TestLayout::BadFilesPlaceNothing()
{
    QFETCH(QByteArray, text);
    QWidget form;
    form.setObjectName(QStringLiteral("form"));
    form.setGeometry(0, 0, 400, 300);
    const QWidget* list = AddChild(&form, "list", Child);
    ReadFrom(text).Apply(&form);
    QCOMPARE(list->geometry(), Child);
    QCOMPARE(form.geometry(), QRect(0, 0, 400, 300));
    FormLayout::Read(QStringLiteral(":/no/such/file.ini")).Apply(&form);
    QCOMPARE(list->geometry(), Child);
}

void TestLayout::EdgesUnderThePointer_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<Qt::Edges>("edges");
    QTest::newRow("middle") << QPoint(500, 400) << Qt::Edges();
    QTest::newRow("just inside") << QPoint(5, 400) << Qt::Edges();
    QTest::newRow("left") << QPoint(4, 400) << Qt::Edges(Qt::LeftEdge);
    QTest::newRow("right") << QPoint(999, 400) << Qt::Edges(Qt::RightEdge);
    QTest::newRow("top") << QPoint(500, 0) << Qt::Edges(Qt::TopEdge);
    QTest::newRow("bottom") << QPoint(500, 796) << Qt::Edges(Qt::BottomEdge);
    QTest::newRow("corner") << QPoint(0, 10) << (Qt::LeftEdge | Qt::TopEdge);
    QTest::newRow("other corner") << QPoint(990, 799) << (Qt::RightEdge | Qt::BottomEdge);
}

void TestLayout::EdgesUnderThePointer()
{
    QFETCH(QPoint, point);
    QFETCH(Qt::Edges, edges);
    QCOMPARE(EdgesAt(point, Form), edges);
}

void TestLayout::DraggingEdges_data()
{
    QTest::addColumn<Qt::Edges>("edges");
    QTest::addColumn<QPoint>("delta");
    QTest::addColumn<QRect>("geometry");
    QTest::newRow("right") << Qt::Edges(Qt::RightEdge) << QPoint(30, 99) << QRect(100, 100, 430, 300);
    QTest::newRow("left") << Qt::Edges(Qt::LeftEdge) << QPoint(30, 99) << QRect(130, 100, 370, 300);
    QTest::newRow("bottom right") << (Qt::RightEdge | Qt::BottomEdge) << QPoint(5, 6)
                                  << QRect(100, 100, 405, 306);
    QTest::newRow("top left") << (Qt::LeftEdge | Qt::TopEdge) << QPoint(-5, -6) << QRect(95, 94, 405, 306);
    QTest::newRow("right too far") << Qt::Edges(Qt::RightEdge) << QPoint(-900, 0)
                                   << QRect(100, 100, 200, 300);
    QTest::newRow("left too far") << Qt::Edges(Qt::LeftEdge) << QPoint(900, 0) << QRect(300, 100, 200, 300);
    QTest::newRow("top too far") << Qt::Edges(Qt::TopEdge) << QPoint(0, 900) << QRect(100, 250, 400, 150);
}

void TestLayout::DraggingEdges()
{
    QFETCH(Qt::Edges, edges);
    QFETCH(QPoint, delta);
    QFETCH(QRect, geometry);
    QCOMPARE(DraggedEdges({100, 100, 400, 300}, edges, delta, {200, 150}), geometry);
}

QTEST_MAIN(TestLayout)
#include "tst_hostui_layout.moc"
