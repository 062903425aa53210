#pragma once

#include <QObject>

namespace tembra {

/// An object with a text and a prompt to bind to, which counts what is written into it.
class BoundNote : public QObject
{
    Q_OBJECT
    Q_PROPERTY(
        QString contentString READ contentString WRITE setContentString NOTIFY contentStringChanged)
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY promptChanged)

public:
    explicit BoundNote(const QString &text = {}) : m_text(text) {}

    QString contentString() const { return m_text; }
    void setContentString(const QString &text)
    {
        ++writes;
        m_text = limit < 0 ? text : text.left(limit);
        Q_EMIT contentStringChanged();
    }
    QString prompt() const { return m_prompt; }
    void setPrompt(const QString &prompt)
    {
        m_prompt = prompt;
        Q_EMIT promptChanged();
    }

    int writes = 0;
    qsizetype limit = -1; ///< Texts longer than this are cut by the object.

Q_SIGNALS:
    void contentStringChanged();
    void promptChanged();

private:
    QString m_text;
    QString m_prompt;
};

} // namespace tembra
