#include "Toolkit/EmptyState.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

class TestEmptyState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatBelongsThere()
    {
        EmptyState state(u"No teammates yet"_s, u"Add the people you meet with."_s,
                         u"Add teammate"_s);
        const auto *title = state.findChild<QLabel *>(u"emptyStateTitle"_s);
        QCOMPARE(title->text(), u"No teammates yet"_s);
        QVERIFY(title->font().pointSizeF() > state.font().pointSizeF());
        QCOMPARE(state.findChild<QLabel *>(u"emptyStateSentence"_s)->text(),
                 u"Add the people you meet with."_s);
        state.setTitle(u"Other"_s);
        QCOMPARE(title->text(), u"Other"_s);
    }

    void offersTheNextStep()
    {
        EmptyState state(u"Title"_s, u"Sentence"_s, u"Add teammate"_s);
        state.show();
        QVERIFY(QTest::qWaitForWindowActive(&state));
        const QSignalSpy steps(&state, &EmptyState::triggered);
        QTest::mouseClick(state.button(), Qt::LeftButton);
        state.button()->setFocus();
        QTest::keyClick(state.button(), Qt::Key_Space);
        QCOMPARE(steps.count(), 2);
    }

    void hasNoButtonWithoutAVerb()
    {
        EmptyState state(u"Title"_s, u"Sentence"_s);
        state.show();
        QVERIFY(!state.button()->isVisible());
        state.setButtonTitle(u"Add"_s);
        QVERIFY(state.button()->isVisible());
    }

    void staysInTheMiddle()
    {
        EmptyState state(u"Title"_s,
                         u"A sentence that is long enough to be broken into some lines of text."_s,
                         u"Add"_s);
        state.resize(800, 500);
        state.show();
        QVERIFY(QTest::qWaitForWindowExposed(&state));
        for (const QWidget *part : state.findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
            QVERIFY(qAbs(part->geometry().center().x() - 400) <= 1);
        QVERIFY(state.minimumSizeHint().width() <= 360);
    }
};

QTEST_MAIN(TestEmptyState)
#include "tst_EmptyState.moc"
