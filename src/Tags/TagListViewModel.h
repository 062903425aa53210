#pragma once

#include "Model/Tag.h"

#include <QColor>
#include <QObject>

#include <memory>

namespace tembra {

/// One row of the recent tags.
class TagListViewModel final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY titleChanged)
    Q_PROPERTY(QString shortcut READ shortcut WRITE setShortcut NOTIFY shortcutChanged)
    Q_PROPERTY(std::shared_ptr<tembra::Tag> tag READ tag WRITE setTag NOTIFY tagChanged)
    Q_PROPERTY(bool enabled READ isEnabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(QColor labelColor READ labelColor NOTIFY enabledChanged)

public:
    using QObject::QObject;

    QString title() const { return m_title; }
    void setTitle(const QString &title);
    /// "⌥⌘" and the number of the row, from 1; a blank until it is known.
    QString shortcut() const { return m_shortcut; }
    void setShortcut(const QString &shortcut);
    /// Null once the tag was deleted.
    std::shared_ptr<Tag> tag() const;
    void setTag(const std::shared_ptr<Tag> &tag);
    /// False when the meeting has the tag already.
    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);
    /// The colour of a label, or of a disabled one.
    QColor labelColor() const;

Q_SIGNALS:
    void titleChanged();
    void shortcutChanged();
    void tagChanged();
    void enabledChanged();

private:
    QString m_title;
    QString m_shortcut{QLatin1Char(' ')};
    std::weak_ptr<Tag> m_tag;
    bool m_enabled = true;
};

} // namespace tembra
