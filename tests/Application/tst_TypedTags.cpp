#include "MeetingWindowsTest.h"

using namespace tembra;
using namespace Qt::StringLiterals;

/// What becomes of a tag that is half typed when something else happens.
class tst_TypedTags : public MeetingWindowsTest
{
    Q_OBJECT

private Q_SLOTS:
    void aSaveLeavesItHalfTyped_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("inMainWindow");
        for (const char *way : {"File > Save", "save()", "autosave"}) {
            const QString text = QString::fromLatin1(way);
            QTest::addRow("%s, main window", way) << text << true;
            QTest::addRow("%s, meeting's window", way) << text << false;
        }
    }

    void aSaveLeavesItHalfTyped()
    {
        QFETCH(QString, way);
        QFETCH(bool, inMainWindow);
        TagField *field = tagField(inMainWindow ? mainEditor()
                                                : open(m_older)->sessionDetailViewController);
        m_ana->setName(u"Ana Silva"_s);
        typeHalfATag(field);
        if (way == u"File > Save")
            press(field->window(), Qt::Key_S, Qt::ControlModifier);
        else if (way == u"save()")
            m_program->services.coreData.save();
        else
            m_program->services.coreData.handleTimer();
        QVERIFY(!m_program->hasChanges());
        QVERIFY(field->isEditing());
        QVERIFY(field->hasFocus());
        QCOMPARE(field->editor().halfTypedText().text, u"half"_s);
        QVERIFY(field->tags().isEmpty());
        QVERIFY(allTags().isEmpty());
        // And typing goes on where it was.
        QTest::keyClicks(field, u"time"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(titlesOf(field->session()->tags()), QStringList{u"halftime "_s});
    }

    void undoLeavesItHalfTyped()
    {
        m_ana->setName(u"Ana Silva"_s);
        tell();
        typeHalfATag(tagField(mainEditor()));
        press(m_program->window, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(allTags().isEmpty());
        QCOMPARE(m_ana->name(), u"Ana"_s);
    }

    void quittingStoresIt_data()
    {
        QTest::addColumn<bool>("inMainWindow");
        QTest::newRow("main window") << true;
        QTest::newRow("meeting's window") << false;
    }

    void quittingStoresIt()
    {
        QFETCH(bool, inMainWindow);
        const auto typeAndQuit = [&] {
            TagField *field = tagField(inMainWindow ? mainEditor()
                                                    : open(m_meeting)->sessionDetailViewController);
            typeHalfATag(field);
            press(field->window(), Qt::Key_Q, Qt::ControlModifier);
        };
        QCOMPARE(m_program->run(typeAndQuit), 0);
        QVERIFY(!m_program->hasChanges());
        restart();
        QCOMPARE(titlesOf(m_meeting->tags()), QStringList{u"half "_s});
        QVERIFY(m_meeting->tags().first()->lastUse());
        QCOMPARE(allTags(), QStringList{u"half "_s});
    }

    void quittingMakesNoTagOfAFilter()
    {
        const auto typeAndQuit = [&] {
            typeHalfATag(filterField());
            press(m_program->window, Qt::Key_Q, Qt::ControlModifier);
        };
        QCOMPARE(m_program->run(typeAndQuit), 0);
        restart();
        QVERIFY(allTags().isEmpty());
    }

    void anotherMeetingEndsItInTheFirst_data()
    {
        QTest::addColumn<QString>("way");
        for (const char *way : {"another meeting", "no meeting", "no teammate", "new meeting"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

    void anotherMeetingEndsItInTheFirst()
    {
        QFETCH(QString, way);
        typeHalfATag(tagField(mainEditor()));
        if (way == u"another meeting")
            pane().setSelectedSession(m_older);
        else if (way == u"no meeting")
            pane().setSelectedSession({});
        else if (way == u"no teammate")
            pane().setSelectedCounterpart({});
        else
            pane().addSession();
        QVERIFY(mainEditor()->session() != m_meeting);
        QCOMPARE(titlesOf(m_meeting->tags()), QStringList{u"half "_s});
        QVERIFY(m_meeting->tags().first()->lastUse());
        QVERIFY(m_older->tags().isEmpty());
        QVERIFY(tagField(mainEditor())->toPlainText().isEmpty());
        QCOMPARE(allTags(), QStringList{u"half "_s});
    }

    void itsMeetingIsDeleted_data()
    {
        QTest::addColumn<bool>("withTeammate");
        QTest::newRow("meeting") << false;
        QTest::newRow("teammate") << true;
    }

    /// What was typed for a meeting that is gone is for nobody.
    void itsMeetingIsDeleted()
    {
        QFETCH(bool, withTeammate);
        typeHalfATag(tagField(mainEditor()));
        QVERIFY((withTeammate ? context().deleteObject(m_ana) : context().deleteObject(m_meeting))
                    .has_value());
        tell();
        QVERIFY(m_older->tags().isEmpty());
        QVERIFY(!tagField(mainEditor())->toPlainText().contains(u"half"));
        settle();
        QVERIFY2(allTags().isEmpty(), qPrintable(allTags().join(u'|')));
    }

    void aTagTakenBackIsNotUsed()
    {
        TagField *field = tagField(mainEditor());
        focus(field);
        QTest::keyClicks(field, u"a,"_s);
        tell();
        press(m_program->window, Qt::Key_Z, Qt::ControlModifier);
        tell();
        QVERIFY(field->tags().isEmpty());
        focus(noteField(mainEditor()));
        settle();
        QVERIFY(allTags().isEmpty());
        QVERIFY(m_meeting->tags().isEmpty());
    }

private:
    void typeHalfATag(TagField *field) const
    {
        focus(field);
        QTest::keyClicks(field, u"half"_s);
        QVERIFY(field->tags().isEmpty());
    }
};

QTEST_MAIN(tst_TypedTags)
#include "tst_TypedTags.moc"
