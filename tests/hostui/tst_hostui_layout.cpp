#include "host/ui/form_layout.h"
#include "host/ui/frameless_window.h"
#include "tests/support/test_tables.h"

#include <QtWidgets>

namespace {

const QRect Child(100, 50, 200, 40);

/// A layout, and where it places the child.
const std::tuple<const char*, QByteArray, QRect> placements[] = {
    {"left and right", "[list]\nleft=10\nright=20\n", {10, 50, 970, 40}},
    {"form too narrow", "[list]\nleft=600\nright=600\n", {600, 50, 0, 40}},
    {"top and bottom", "[list]\ntop=5\nbottom=10\n", {100, 5, 200, 785}},
    {"words for numbers", "[list]\nleft=wide\nright=\nwidth=1e\n", Child},
    {"follows nobody", "[list]\nwith=nobody\n", Child},
};

const QRect Start(100, 100, 400, 300);

/// Where and how far the mouse drags, and the geometry of a main window and of a dialog afterwards.
const std::tuple<const char*, QPoint, QPoint, QRect, QRect> drags[] = {
    {"middle", {200, 150}, {30, 99}, Start, Start},
    {"title", {200, 20}, {40, 30}, {140, 130, 400, 300}, {140, 130, 400, 300}},
    {"left", {4, 150}, {30, 99}, {130, 100, 370, 300}, Start},
    {"right", {399, 150}, {30, 99}, {100, 100, 430, 300}, Start},
    {"top", {200, 0}, {30, -50}, {100, 50, 400, 350}, Start.translated(30, -50)},
    {"corner", {0, 10}, {-15, -16}, {85, 84, 415, 316}, Start.translated(-15, -16)},
    {"left too far", {0, 150}, {900, 0}, {300, 100, 200, 300}, Start},
};

FormLayout ReadFrom(const QByteArray& text)
{
    QTemporaryFile file;
    if (!file.open() || file.write(text) != text.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return FormLayout::Read(file.fileName());
}

} // namespace

/// Placement of a form's children; moving and resizing a frameless window.
class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void PlacesChildren_data() { AddRows(placements); }
    void PlacesChildren()
    {
        const auto& [name, text, place] = Row(placements);
        const FormLayout layout = ReadFrom(text);
        const QRect whole(0, 0, 1000, 800);
        QWidget form;
        form.setObjectName("form"_s);
        form.setGeometry(whole);
        QWidget list(&form);
        list.setObjectName("list"_s);
        list.setGeometry(Child);
        layout.Apply(&form);
        QCOMPARE(list.geometry(), place);
        QCOMPARE(form.geometry(), whole);
    }

    void DragsEdgesAndTitle_data() { AddRows(drags); }
    void DragsEdgesAndTitle()
    {
        const auto& [name, from, delta, main, dialog] = Row(drags);
        for (const auto kind : {FramelessWindow::Main, FramelessWindow::Dialog}) {
            QWidget form;
            form.setMinimumSize(200, 150);
            form.setGeometry(Start);
            new FramelessWindow(&form, kind);
            const QPoint global = form.mapToGlobal(from);
            const QPoint to = from + delta;
            QMouseEvent press(QEvent::MouseButtonPress, from, global, Qt::LeftButton, Qt::LeftButton, {});
            QMouseEvent move(QEvent::MouseMove, to, global + delta, Qt::NoButton, Qt::LeftButton, {});
            QMouseEvent release(QEvent::MouseButtonRelease, to, global + delta, Qt::LeftButton, {}, {});
            QMouseEvent after(QEvent::MouseMove, to, global, Qt::NoButton, Qt::LeftButton, {});
            for (QMouseEvent* event : {&press, &move, &release, &after})
                QCoreApplication::sendEvent(&form, event);
            QCOMPARE(form.geometry(), kind == FramelessWindow::Main ? main : dialog);
        }
    }
};

QTEST_MAIN(TestLayout)
#include "tst_hostui_layout.moc"
