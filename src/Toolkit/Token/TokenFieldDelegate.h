#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <variant>

class QMenu;
class QMimeData;

namespace tembra {

/// Tells a token field what its tokens are: the objects they represent, their texts and menus, and
/// how they go to the clipboard and come back.
///
/// A function may change the field it is called by.
class TokenFieldDelegate
{
public:
    using Object = std::shared_ptr<QObject>;
    /// What is proposed as a token: an object, or a text for which there is none.
    using Proposal = std::variant<Object, QString>;

    virtual ~TokenFieldDelegate() = default;

    /// The title of the token.
    virtual QString displayStringForRepresentedObject(const Object &object) const = 0;
    /// The text that the token becomes when it is edited, or copied as text.
    virtual QString editingStringForRepresentedObject(const Object &object) const = 0;
    /// The object that has this editing string; null leaves it a text.
    virtual Object representedObjectForEditingString(const QString &editingString) = 0;
    /// The completions of a half-typed text that will be the token of this index.
    virtual QStringList completionsForSubstring(const QString &substring, int indexOfToken) = 0;
    /// Whether the half-typed text names the object of a completion in full, so that ending the text
    /// takes that completion.
    virtual bool isWholeName(const QString &substring, const QString &completion) const = 0;
    /// The objects to insert for @p proposed, as tokens from @p index on. A text for which none is
    /// returned is removed.
    virtual QList<Object> shouldAddObjects(const QList<Proposal> &proposed, int index) = 0;

    virtual bool hasMenuForRepresentedObject(const Object &object) const = 0;
    /// The context menu of the token, which stays the delegate's; null shows the usual one.
    virtual QMenu *menuForRepresentedObject(const Object &object) = 0;

    /// Adds the objects to @p mimeData, which has their texts already. False if none was added.
    virtual bool writeRepresentedObjects(const QList<Object> &objects,
                                         QMimeData &mimeData) const = 0;
    virtual bool canReadFromPasteboard(const QMimeData &mimeData) const = 0;
    virtual QList<Object> readFromPasteboard(const QMimeData &mimeData) = 0;
};

} // namespace tembra
