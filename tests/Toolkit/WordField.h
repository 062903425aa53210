#pragma once

#include "Toolkit/Token/TokenField.h"
#include "WordDelegate.h"

/// A token field for words.
class WordField : public tembra::TokenField, public WordDelegate
{
    Q_OBJECT

public:
    using Object = WordDelegate::Object;

    explicit WordField(QWidget *parent = nullptr) : TokenField(*this, parent)
    {
        presentWords = [this] { return words(); };
    }

    void moveCaret(int position, int anchor = -1)
    {
        QTextCursor cursor(document());
        cursor.setPosition(anchor < 0 ? position : anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(cursor);
    }

    QString picture() const
    {
        const QTextCursor cursor = textCursor();
        return pictureOf(document()->toRawText(), objectValue(), cursor.position(),
                         cursor.anchor());
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

    /// The half-typed text around the caret.
    QString editedSubstring() const { return editor().halfTypedText().text; }
};
