#pragma once

#include "Toolkit/Token/TokenField.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

/// Something to make tokens of.
class Word : public QObject
{
    Q_OBJECT

public:
    explicit Word(QString word) : text(std::move(word)) {}

    QString text;
};

/// A token field for words that records what it is asked.
class WordField : public tembra::TokenField
{
    Q_OBJECT

public:
    static constexpr auto mimeType = "application/x-words";

    using TokenField::TokenField;

    static std::shared_ptr<Word> wordOf(const Object &object)
    {
        return std::static_pointer_cast<Word>(object);
    }

    Object known(const QString &text)
    {
        vocabulary.append(std::make_shared<Word>(text));
        return vocabulary.constLast();
    }

    /// Types each character, of whatever script.
    void type(const QString &text)
    {
        for (const uint character : text.toUcs4()) {
            const QString key = QString::fromUcs4(reinterpret_cast<const char32_t *>(&character),
                                                  1);
            for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(type, 0, Qt::NoModifier, key);
                QCoreApplication::sendEvent(this, &event);
            }
        }
    }

    void moveCaret(int position, int anchor = -1)
    {
        QTextCursor cursor(document());
        cursor.setPosition(anchor < 0 ? position : anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(cursor);
    }

    /// The content: tokens in brackets, half-typed text as it is, the caret as a bar, with a
    /// selection as two.
    QString picture() const
    {
        QString result;
        const QString text = document()->toRawText();
        const QTextCursor cursor = textCursor();
        const QList<Object> objects = objectValue();
        qsizetype token = 0;
        for (qsizetype i = 0; i <= text.size(); ++i) {
            if (i == cursor.position())
                result += QChar(u'|');
            if (i == cursor.anchor() && cursor.hasSelection())
                result += QChar(u'|');
            if (i == text.size())
                break;
            const bool isToken = text.at(i) == QChar::ObjectReplacementCharacter;
            result += isToken ? QChar(u'[') + wordOf(objects.at(token++))->text + QChar(u']')
                              : QString(text.at(i));
        }
        return result;
    }

    void show(const QStringList &texts)
    {
        QList<Object> objects;
        for (const QString &text : texts)
            objects.append(known(text));
        setObjectValue(objects);
    }

    QStringList words() const
    {
        QStringList result;
        for (const Object &object : objectValue())
            result.append(wordOf(object)->text);
        return result;
    }

    QList<Object> vocabulary;
    QStringList offered; ///< Completions that begin with what is typed.
    bool makesWords = true; ///< Of texts that are not known yet.
    QMenu *menu = nullptr;

    QStringList asked; ///< "substring at index" for each request of completions.
    QStringList proposed; ///< "text at index" for each proposal.

protected:
    QStringList completionsForSubstring(const QString &substring, int indexOfToken) override
    {
        asked.append(QStringLiteral("%1 at %2").arg(substring).arg(indexOfToken));
        QStringList result;
        for (const QString &text : offered) {
            if (text.startsWith(substring, Qt::CaseInsensitive))
                result.append(text);
        }
        return result;
    }

    Object representedObjectForEditingString(const QString &editingString) override
    {
        for (const Object &object : vocabulary) {
            if (wordOf(object)->text == editingString)
                return object;
        }
        return nullptr;
    }

    QString displayStringForRepresentedObject(const Object &object) const override
    {
        return wordOf(object)->text;
    }

    QList<Object> shouldAddObjects(const QList<Proposal> &proposals, int index) override
    {
        QList<Object> result;
        for (const Proposal &proposal : proposals) {
            const Object *object = std::get_if<Object>(&proposal);
            const QString text = object ? wordOf(*object)->text : std::get<QString>(proposal);
            proposed.append(QStringLiteral("%1 at %2").arg(text).arg(index));
            if (object)
                result.append(*object);
            else if (makesWords)
                result.append(known(text));
        }
        return result;
    }

    bool hasMenuForRepresentedObject(const Object &) const override { return menu; }
    QMenu *menuForRepresentedObject(const Object &) override { return menu; }

    bool writeRepresentedObjects(const QList<Object> &objects, QMimeData &mimeData) const override
    {
        QStringList texts;
        for (const Object &object : objects)
            texts.append(wordOf(object)->text);
        mimeData.setData(QString::fromLatin1(mimeType), texts.join(QChar(u'|')).toUtf8());
        return true;
    }

    bool canReadFromPasteboard(const QMimeData &mimeData) const override
    {
        return mimeData.hasFormat(QString::fromLatin1(mimeType));
    }

    /// Like a field of tags: what is there already is left out.
    QList<Object> readFromPasteboard(const QMimeData &mimeData) override
    {
        QList<Object> result;
        const QString texts = QString::fromUtf8(mimeData.data(QString::fromLatin1(mimeType)));
        for (const QString &text : texts.split(QChar(u'|'))) {
            if (!words().contains(text))
                result.append(known(text));
        }
        return result;
    }
};
