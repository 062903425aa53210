#include "Toolkit/Token/TokenEditor.h"

#include "WordDelegate.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>

using namespace tembra;
using namespace Qt::StringLiterals;

/// Editing the text of a token field without a widget.
class tst_TokenEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_words = std::make_unique<WordDelegate>();
        m_document = std::make_unique<QTextDocument>();
        m_text = std::make_unique<TokenText>(m_document.get(), [](const auto &object) {
            return WordDelegate::wordOf(object)->text;
        });
        m_editor = std::make_unique<TokenEditor>(*m_text, *m_words);
    }
    void cleanup()
    {
        m_editor.reset();
        m_text.reset();
        m_document.reset();
    }

    void typedTextStaysHalfTyped()
    {
        m_editor->typeText(u"One"_s);
        QCOMPARE(picture(), u"One|"_s);
        QVERIFY(m_editor->hasHalfTypedText());
        QCOMPARE(m_editor->halfTypedText().text, u"One"_s);
        QVERIFY(m_words->proposed.isEmpty());
    }

    void aSeparatorMakesATokenOfTheTextBeforeIt_data()
    {
        QTest::addColumn<QString>("separator");
        QTest::newRow("comma") << u","_s;
        QTest::newRow("tab") << u"\t"_s;
        QTest::newRow("line feed") << u"\n"_s;
        QTest::newRow("line separator") << u"\u2028"_s;
    }

    void aSeparatorMakesATokenOfTheTextBeforeIt()
    {
        QFETCH(QString, separator);
        m_editor->typeText(u"One"_s + separator + u" Two"_s);
        QCOMPARE(picture(), u"[One] Two|"_s);
        QCOMPARE(m_words->proposed, QStringList(u"One at 0"_s));
    }

    void tokenizingTakesAllHalfTypedTexts()
    {
        show({u"A"_s, u"B"_s});
        m_editor->select(1, 1);
        m_editor->typeText(u"x"_s);
        m_editor->select(0, 0);
        m_editor->typeText(u"y"_s);
        m_editor->tokenizeAll();
        QCOMPARE(picture(), u"[y]|[A][x][B]"_s);
        QCOMPARE(m_words->proposed, QStringList({u"y at 0"_s, u"x at 2"_s}));
        QVERIFY(!m_editor->hasHalfTypedText());
    }

    void aKnownTextBecomesItsObject()
    {
        const auto known = m_words->known(u"Known"_s);
        m_words->makesWords = false;
        m_editor->typeText(u"Known,unknown,"_s);
        QCOMPARE(m_text->objects(), QList{known});
        QCOMPARE(picture(), u"[Known]|"_s);
    }

    void aBlankTextIsRemovedWithoutAProposal()
    {
        m_editor->typeText(u"  "_s);
        m_editor->tokenizeAll();
        QCOMPARE(picture(), u"|"_s);
        QVERIFY(m_words->proposed.isEmpty());
    }

    void typingReplacesTheSelection()
    {
        show({u"One"_s, u"Two"_s, u"Three"_s});
        m_editor->select(0, 2);
        m_editor->typeText(u"x"_s);
        QCOMPARE(picture(), u"x|[Three]"_s);
    }

    void deletingSelectsTheAdjacentTokenFirst()
    {
        show({u"One"_s, u"Two"_s});
        m_editor->select(1, 1);
        QVERIFY(m_editor->selectAdjacentToken(TokenEditor::Direction::Backward));
        QCOMPARE(picture(), u"|[One]|[Two]"_s);
        QCOMPARE(m_editor->selectedToken(), 0);
        QVERIFY(!m_editor->selectAdjacentToken(TokenEditor::Direction::Backward));
        m_editor->select(1, 1);
        QVERIFY(m_editor->selectAdjacentToken(TokenEditor::Direction::Forward));
        QCOMPARE(m_editor->selectedToken(), 1);
        m_editor->select(2, 2);
        QVERIFY(!m_editor->selectAdjacentToken(TokenEditor::Direction::Forward));
    }

    void anAppendedTokenLeavesHalfTypedTextAndCaret()
    {
        show({u"One"_s});
        m_editor->typeText(u"ab"_s);
        m_editor->appendObject(m_words->known(u"New"_s));
        QCOMPARE(picture(), u"[One][New]ab|"_s);
    }

    void removingAnObjectRemovesAllItsTokens()
    {
        show({u"One"_s, u"Two"_s});
        const auto first = m_text->objects().at(0);
        m_editor->appendObject(first);
        m_editor->removeObject(first);
        QCOMPARE(picture(), u"[Two]|"_s);
    }

    void anEditedTokenComesBackUnchanged()
    {
        show({u"One"_s, u"One"_s});
        const auto second = m_text->objects().at(1);
        m_editor->editToken(1);
        QCOMPARE(picture(), u"[One]|One|"_s);
        QCOMPARE(m_editor->editedObject(), second);
        m_editor->tokenizeAll();
        QCOMPARE(m_text->objects().at(1), second);
        QVERIFY(m_words->proposed.isEmpty());
        QVERIFY(!m_editor->isEditingToken());
    }

    void cancellingTheEditingOfATokenRestoresIt()
    {
        show({u"One"_s, u"Two"_s});
        const auto before = m_text->objects();
        m_editor->editToken(0);
        m_editor->typeText(u"changed"_s);
        QVERIFY(m_editor->cancelTokenEditing());
        QCOMPARE(m_text->objects(), before);
        QVERIFY(!m_editor->cancelTokenEditing());
    }

    void aRemovedObjectDoesNotComeBackFromItsEditedToken()
    {
        show({u"One"_s, u"Two"_s});
        const auto first = m_text->objects().at(0);
        m_editor->editToken(0);
        m_editor->removeObject(first);
        QCOMPARE(picture(), u"|[Two]"_s);
        QVERIFY(!m_editor->cancelTokenEditing());
        m_editor->tokenizeAll();
        QCOMPARE(picture(), u"|[Two]"_s);
        QVERIFY(m_words->proposed.isEmpty());
    }

    void theChangedTextOfARemovedObjectStays()
    {
        show({u"One"_s, u"Two"_s});
        const auto first = m_text->objects().at(0);
        m_editor->editToken(0);
        m_editor->typeText(u"Other"_s);
        m_editor->removeObject(first);
        QCOMPARE(picture(), u"Other|[Two]"_s);
        QVERIFY(!m_editor->isEditingToken());
    }

    void aCompletionReplacesTheTextAroundIt()
    {
        show({u"One"_s, u"Two"_s});
        m_editor->select(1, 1);
        m_editor->typeText(u"pl"_s);
        m_editor->replaceText(2, u"Planning, later "_s);
        QCOMPARE(picture(), u"[One][Planning, later ]|[Two]"_s);
    }

    void theSelectionIsCopiedAsTextsAndObjects()
    {
        show({u"One"_s, u"Two"_s});
        m_editor->typeText(u"half"_s);
        m_editor->select(1, 4);
        const auto data = m_editor->selectionData();
        QCOMPARE(data->text(), u"Two, ha"_s);
        QCOMPARE(data->data(QString::fromLatin1(WordDelegate::mimeType)), QByteArray("Two"));
        m_editor->select(3, 4);
        QVERIFY(!m_editor->selectionData()->hasFormat(QString::fromLatin1(WordDelegate::mimeType)));
    }

    void pastedTextBecomesTokens_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("after");
        QTest::newRow("one") << QString() << u"One"_s << u"[One]|"_s;
        QTest::newRow("list onto a text") << u"a"_s << u"b,c"_s << u"[ab][c]|"_s;
        QTest::newRow("into a text") << u"a"_s << u"b"_s << u"ab|"_s;
        QTest::newRow("byte order mark") << QString() << u"\ufeffOne"_s << u"[One]|"_s;
    }

    void pastedTextBecomesTokens()
    {
        QFETCH(QString, typed);
        QFETCH(QString, pasted);
        m_editor->typeText(typed);
        QMimeData data;
        data.setText(pasted);
        QVERIFY(m_editor->paste(data));
        QTEST(picture(), "after");
    }

    void aPastedTitleThatEndsInABlankIsKnown()
    {
        const auto known = m_words->known(u"Planning "_s);
        QMimeData data;
        data.setText(u"Planning , Planning ,Other "_s);
        QVERIFY(m_editor->paste(data));
        QCOMPARE(m_text->objects().first(2), (QList{known, known}));
        QCOMPARE(picture(), u"[Planning ][Planning ][Other]|"_s);
    }

    void filesAndPicturesAreNotPasted()
    {
        QMimeData files;
        files.setUrls({QUrl(u"file:///etc/hostname"_s)});
        files.setText(u"file:///etc/hostname"_s);
        QVERIFY(!m_editor->paste(files));
        QMimeData rich;
        rich.setHtml(u"<b>One</b>"_s);
        QVERIFY(!m_editor->canPaste(rich));
        QCOMPARE(picture(), u"|"_s);
    }

    void pastedObjectsReplaceTheSelection()
    {
        show({u"One"_s, u"Two"_s});
        m_editor->select(0, 1);
        const auto data = m_editor->selectionData();
        m_editor->select(1, 2);
        QVERIFY(m_editor->paste(*data));
        QCOMPARE(picture(), u"[One][One]|"_s);
    }

    void theSelectionComesBackIfNothingWasRead()
    {
        show({u"One"_s, u"Two"_s});
        m_words->presentWords = [] { return QStringList(u"One"_s); };
        m_editor->select(0, 1);
        const auto data = m_editor->selectionData();
        m_editor->select(1, 2);
        const QSignalSpy changes(m_editor.get(), &TokenEditor::contentChanged);
        QVERIFY(!m_editor->paste(*data));
        QCOMPARE(picture(), u"[One]|[Two]|"_s);
        QCOMPARE(changes.count(), 0);
    }

    void movedTextIsSelectedInItsNewPlace()
    {
        show({u"One"_s, u"Two"_s, u"Three"_s});
        m_editor->select(2, 3);
        m_editor->moveText(m_editor->cursor(), 0);
        QCOMPARE(picture(), u"|[Three]|[One][Two]"_s);
        m_editor->moveText(m_editor->cursor(), 1);
        QCOMPARE(picture(), u"|[Three]|[One][Two]"_s);
    }

    void aChangeOfManyStepsIsAnnouncedOnce()
    {
        const QSignalSpy changes(m_editor.get(), &TokenEditor::contentChanged);
        m_editor->typeText(u"One,Two,Three"_s);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.at(0).at(0).value<TokenEditor::Author>(), TokenEditor::Author::User);
        QCOMPARE(changes.at(0).at(1).toBool(), true);
        {
            const TokenEditor::EditBlock outer(*m_editor);
            m_editor->typeText(u"x"_s);
            m_editor->typeText(u"y"_s);
            QCOMPARE(changes.count(), 1);
        }
        QCOMPARE(changes.count(), 2);
        QCOMPARE(changes.at(1).at(1).toBool(), false);
        show({u"Other"_s});
        QCOMPARE(changes.at(2).at(0).value<TokenEditor::Author>(), TokenEditor::Author::Program);
    }

    void theSameContentIsNotAnnounced()
    {
        show({u"One"_s});
        const QSignalSpy changes(m_editor.get(), &TokenEditor::contentChanged);
        m_editor->setObjects(m_text->objects());
        m_editor->removeObject(m_words->known(u"Other"_s));
        m_editor->tokenizeAll();
        QCOMPARE(changes.count(), 0);
    }

private:
    void show(const QStringList &texts)
    {
        QList<TokenEditor::Object> objects;
        for (const QString &text : texts)
            objects.append(m_words->known(text));
        m_editor->setObjects(objects);
    }

    QString picture() const
    {
        return pictureOf(m_document->toRawText(), m_text->objects(), m_editor->cursor().position(),
                         m_editor->cursor().anchor());
    }

    std::unique_ptr<WordDelegate> m_words;
    std::unique_ptr<QTextDocument> m_document;
    std::unique_ptr<TokenText> m_text;
    std::unique_ptr<TokenEditor> m_editor;
};

QTEST_MAIN(tst_TokenEditor)
#include "tst_TokenEditor.moc"
