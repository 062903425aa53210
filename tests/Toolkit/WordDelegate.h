#pragma once

#include "Toolkit/Token/TokenFieldDelegate.h"

#include <QMenu>
#include <QMimeData>
#include <QObject>

#include <functional>

/// Something to make tokens of.
class Word : public QObject
{
    Q_OBJECT

public:
    explicit Word(QString word) : text(std::move(word)) {}

    QString text;
};

/// The delegate of a token field for words. It records what it is asked.
class WordDelegate : public tembra::TokenFieldDelegate
{
public:
    static constexpr auto mimeType = "application/x-words";

    static std::shared_ptr<Word> wordOf(const Object &object)
    {
        return std::static_pointer_cast<Word>(object);
    }

    Object known(const QString &text)
    {
        vocabulary.append(std::make_shared<Word>(text));
        return vocabulary.constLast();
    }

    QList<Object> vocabulary;
    QStringList offered; ///< Completions that begin with what is typed.
    bool makesWords = true; ///< Of texts that are not known yet.
    QMenu *menu = nullptr;
    std::function<QStringList()> presentWords; ///< These are left out when objects are pasted.

    QStringList asked; ///< "substring at index" for each request of completions.
    QStringList proposed; ///< "text at index" for each proposal.

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

    bool isWholeName(const QString &substring, const QString &completion) const override
    {
        return completion.compare(substring, Qt::CaseInsensitive) == 0;
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

    QString editingStringForRepresentedObject(const Object &object) const override
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

    QList<Object> readFromPasteboard(const QMimeData &mimeData) override
    {
        QList<Object> result;
        const QString texts = QString::fromUtf8(mimeData.data(QString::fromLatin1(mimeType)));
        for (const QString &text : texts.split(QChar(u'|'))) {
            if (!presentWords || !presentWords().contains(text))
                result.append(known(text));
        }
        return result;
    }
};

/// The content as a text: tokens in brackets, half-typed text as it is, the caret as a bar, with a
/// selection as two.
inline QString pictureOf(const QString &rawText, const QList<WordDelegate::Object> &objects,
                         int caret, int anchor)
{
    QString result;
    qsizetype token = 0;
    for (qsizetype i = 0; i <= rawText.size(); ++i) {
        if (i == caret)
            result += QChar(u'|');
        if (i == anchor && caret != anchor)
            result += QChar(u'|');
        if (i == rawText.size())
            break;
        const bool isToken = rawText.at(i) == QChar::ObjectReplacementCharacter;
        result += isToken
                      ? QChar(u'[') + WordDelegate::wordOf(objects.at(token++))->text + QChar(u']')
                      : QString(rawText.at(i));
    }
    return result;
}
