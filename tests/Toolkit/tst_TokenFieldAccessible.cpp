#include "Toolkit/Token/TokenFieldAccessible.h"

#include "TokenFieldTest.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QProcess>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// What assistive technology was told.
QList<std::pair<QAccessible::Event, QString>> announced;

void noteAnnouncement(QAccessibleEvent *event)
{
    QAccessibleInterface *teller = event->accessibleInterface();
    if (!teller)
        return;
    const bool isValue = event->type() == QAccessible::ValueChanged;
    announced.append(
        {event->type(), isValue
                            ? static_cast<QAccessibleValueChangeEvent *>(event)->value().toString()
                            : teller->text(QAccessible::Name)});
}

} // namespace

class TestTokenFieldAccessible : public TokenFieldTest
{
    Q_OBJECT

private Q_SLOTS:
    void isATextOfTitles()
    {
        m_field->setAccessibleName(u"Tags"_s);
        m_field->show({u"Planning"_s, u"Plans 🚀"_s});
        QCOMPARE(accessible()->role(), QAccessible::EditableText);
        QCOMPARE(accessible()->text(QAccessible::Name), u"Tags"_s);
        QCOMPARE(accessible()->text(QAccessible::Value), u"Planning, Plans 🚀"_s);
        QCOMPARE(accessible()->text(QAccessible::Description), u"Planning, Plans 🚀"_s);
        QVERIFY(accessible()->state().editable);
        QTest::keyClicks(m_field, u"ha"_s);
        QCOMPARE(text()->text(0, text()->characterCount()), u"Planning, Plans 🚀, ha"_s);
        QCOMPARE(text()->text(10, 15), u"Plans"_s);
        m_field->setReadOnly(true);
        QVERIFY(!accessible()->state().editable);
        QVERIFY(accessible()->state().readOnly);
    }

    void hasNoNamelessChildren()
    {
        QCOMPARE(accessible()->childCount(), 0);
        QVERIFY(!accessible()->child(0));
    }

    void mapsPositions()
    {
        m_field->show({u"One"_s, u"Two"_s});
        m_field->moveCaret(1);
        QTest::keyClicks(m_field, u"ab"_s);
        // "One, ab, Two" with the caret behind "ab".
        QCOMPARE(text()->cursorPosition(), 7);
        for (const auto &[offset, picture] :
             QList<std::pair<int, QString>>{{0, u"|[One]ab[Two]"_s},
                                            {2, u"[One]|ab[Two]"_s},
                                            {3, u"[One]|ab[Two]"_s},
                                            {5, u"[One]|ab[Two]"_s},
                                            {6, u"[One]a|b[Two]"_s},
                                            {9, u"[One]ab|[Two]"_s},
                                            {12, u"[One]ab[Two]|"_s},
                                            {99, u"[One]ab[Two]|"_s}}) {
            text()->setCursorPosition(offset);
            QCOMPARE(m_field->picture(), picture);
        }
        QCOMPARE(text()->cursorPosition(), 12);
        m_field->moveCaret(0);
        QCOMPARE(text()->cursorPosition(), 0);
    }

    void selects()
    {
        m_field->show({u"One"_s, u"Two"_s, u"Three"_s});
        QCOMPARE(text()->selectionCount(), 0);
        text()->addSelection(5, 8);
        QCOMPARE(m_field->picture(), u"[One]|[Two]|[Three]"_s);
        QCOMPARE(text()->selectionCount(), 1);
        int start = -1, end = -1;
        text()->selection(0, &start, &end);
        QCOMPARE(text()->text(start, end), u"Two"_s);
        text()->removeSelection(0);
        QCOMPARE(text()->selectionCount(), 0);
    }

    void isEdited()
    {
        QAccessibleEditableTextInterface *editable = accessible()->editableTextInterface();
        QVERIFY(editable);
        editable->insertText(0, u"One, Two"_s);
        QCOMPARE(m_field->picture(), u"[One] Two|"_s);
        m_field->endEditing();
        editable->deleteText(0, 3);
        QCOMPARE(m_field->picture(), u"|[Two]"_s);
        editable->replaceText(0, text()->characterCount(), u"Three"_s);
        QCOMPARE(m_field->picture(), u"Three|"_s);
        m_field->setReadOnly(true);
        editable->insertText(0, u"x"_s);
        QCOMPARE(m_field->picture(), u"Three|"_s);
    }

    void tellsWhereThingsAre()
    {
        m_field->show({u"One"_s, u"Two"_s});
        const QRect second = m_field->tokenRect(1);
        const QPoint corner = m_field->viewport()->mapToGlobal(second.topLeft());
        QCOMPARE(text()->characterRect(5), QRect(corner, second.size()));
        QCOMPARE(text()->offsetAtPoint(corner + QPoint(10, 5)), 5);
    }

    void announcesTokens()
    {
        if (!QTest::qWaitFor([] { return QAccessible::isActive(); }, 3000))
            QSKIP("There is no accessibility bus (at-spi2-core) to announce anything on");
        announced.clear();
        QAccessible::installUpdateHandler(noteAnnouncement);
        m_field->show({u"One"_s});
        QTest::keyClicks(m_field, u"Two,"_s);
        QAccessible::installUpdateHandler(nullptr);
        QVERIFY(announced.contains({QAccessible::ValueChanged, u"One"_s}));
        QVERIFY(announced.contains({QAccessible::ValueChanged, u"One, Two"_s}));
        QVERIFY(!announced.contains({QAccessible::ValueChanged, u"One, Tw"_s}));
    }

    void announcesTheHighlight()
    {
        if (!QTest::qWaitFor([] { return QAccessible::isActive(); }, 3000))
            QSKIP("There is no accessibility bus (at-spi2-core) to announce anything on");
        m_field->offered = QStringList{u"Plans 🚀"_s, u"Planning"_s};
        QTest::keyClicks(m_field, u"pl"_s);
        announced.clear();
        QAccessible::installUpdateHandler(noteAnnouncement);
        key(Qt::Key_Down);
        key(Qt::Key_Down);
        QAccessible::installUpdateHandler(nullptr);
        QVERIFY(announced.contains({QAccessible::Focus, u"Plans 🚀"_s}));
        QVERIFY(announced.contains({QAccessible::Focus, u"Planning"_s}));
        QCOMPARE(m_field->findChild<QAbstractItemView *>()->accessibleName(), u"Completions"_s);
    }

private:
    QAccessibleInterface *accessible() const
    {
        return QAccessible::queryAccessibleInterface(m_field);
    }
    QAccessibleTextInterface *text() const { return accessible()->textInterface(); }
};

int main(int argc, char **argv)
{
    // Qt asks for the accessibility bus at its start and does not wait for one.
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    QProcess::execute(u"dbus-send"_s,
                      {u"--session"_s, u"--print-reply=literal"_s, u"--dest=org.a11y.Bus"_s,
                       u"/org/a11y/bus"_s, u"org.a11y.Bus.GetAddress"_s});
    QApplication application(argc, argv);
    TestTokenFieldAccessible test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TokenFieldAccessible.moc"
