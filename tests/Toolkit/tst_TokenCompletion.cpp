#include "Toolkit/Token/TokenCompletion.h"

#include <QAbstractItemModelTester>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Which completions are offered, which one is highlighted, and when the list is open.
class tst_TokenCompletion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_completion = std::make_unique<TokenCompletion>(); }

    void itsRowsAreTheCompletions()
    {
        QAbstractItemModelTester tester(m_completion.get(),
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        m_completion->offer({u"One"_s, QString(5'000, u'x')}, 0);
        QCOMPARE(m_completion->rowCount(), 2);
        QCOMPARE(m_completion->index(0, 0).data().toString(), u"One"_s);
        QVERIFY(m_completion->index(1, 0).data().toString().size() < 5'000);
        QCOMPARE(m_completion->entry(1).size(), 5'000);
    }

    void itIsOpenWhileSomethingIsOffered()
    {
        const QSignalSpy opened(m_completion.get(), &TokenCompletion::openChanged);
        QVERIFY(!m_completion->isOpen());
        m_completion->offer({}, 3);
        QVERIFY(!m_completion->isOpen());
        m_completion->offer({u"One"_s}, 3);
        QVERIFY(m_completion->isOpen());
        QCOMPARE(m_completion->textStart(), 3);
        m_completion->offer({u"Two"_s}, 3);
        m_completion->offer({}, 3);
        QVERIFY(!m_completion->isOpen());
        m_completion->close();
        QCOMPARE(opened.count(), 2);
    }

    void theFirstIsHighlightedOnlyIfAskedFor()
    {
        m_completion->offer({u"One"_s, u"Two"_s}, 0);
        QCOMPARE(m_completion->highlightedRow(), -1);
        QVERIFY(!m_completion->takeHighlighted());
        m_completion->setHighlightsFirst(true);
        m_completion->offer({u"One"_s, u"Two"_s}, 0);
        QCOMPARE(m_completion->highlightedRow(), 0);
    }

    void keysMoveTheHighlight()
    {
        QStringList many;
        for (int i = 0; i < 30; ++i)
            many.append(QString::number(i));
        m_completion->offer(many, 0);
        const QList<std::pair<Qt::Key, int>> steps{{Qt::Key_Down, 0}, {Qt::Key_Down, 1},
                                                   {Qt::Key_Up, 0},   {Qt::Key_Up, 29},
                                                   {Qt::Key_Down, 0}, {Qt::Key_PageDown, 7},
                                                   {Qt::Key_End, 29}, {Qt::Key_PageDown, 29},
                                                   {Qt::Key_Home, 0}, {Qt::Key_PageUp, 0}};
        for (const auto &[code, row] : steps) {
            QVERIFY(press(code));
            QCOMPARE(m_completion->highlightedRow(), row);
        }
    }

    void homeAndEndAreTheCaretsUntilAKeyHasMovedTheHighlight()
    {
        m_completion->setHighlightsFirst(true);
        m_completion->offer({u"One"_s, u"Two"_s}, 0);
        QVERIFY(!press(Qt::Key_End));
        QVERIFY(press(Qt::Key_Down));
        QVERIFY(press(Qt::Key_Home));
        m_completion->offer({u"One"_s}, 0);
        QVERIFY(!press(Qt::Key_Home));
    }

    void otherKeysAreNotItsOwn()
    {
        QVERIFY(!press(Qt::Key_Down));
        m_completion->offer({u"One"_s}, 0);
        QVERIFY(!press(Qt::Key_Left));
        QVERIFY(!press(Qt::Key_Down, Qt::ShiftModifier));
        QCOMPARE(m_completion->highlightedRow(), -1);
    }

    void takingClosesItAndTellsWhichOne()
    {
        const QSignalSpy taken(m_completion.get(), &TokenCompletion::taken);
        m_completion->offer({u"One"_s, u"Two"_s}, 4);
        press(Qt::Key_Up);
        QVERIFY(m_completion->takeHighlighted());
        QCOMPARE(taken.count(), 1);
        QCOMPARE(taken.at(0).at(0).toString(), u"Two"_s);
        QCOMPARE(taken.at(0).at(1).toInt(), 4);
        QVERIFY(!m_completion->isOpen());
        QVERIFY(!m_completion->takeHighlighted());
        m_completion->take(0);
        QCOMPARE(taken.count(), 1);
    }

private:
    bool press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        return m_completion->moveHighlight(QKeyEvent(QEvent::KeyPress, key, modifiers), 8);
    }

    std::unique_ptr<TokenCompletion> m_completion;
};

QTEST_MAIN(tst_TokenCompletion)
#include "tst_TokenCompletion.moc"
