#pragma once

#include "Preferences/InputControls/EmojiTextField.h"
#include "Tags/BrowserRowDelegate.h"

#include <QPointer>

namespace tembra {

class RowNameEditor;

/// Draws a row of the tag list, and edits emoji and name of a tag in place.
class TagRowDelegate final : public BrowserRowDelegate
{
    Q_OBJECT

public:
    explicit TagRowDelegate(EmojiTextField::CharacterPalette characterPalette,
                            QObject *parent = nullptr);

    /// Writes a name being typed into its tag; the editor stays open.
    void commitOpenEditor();
    /// Whether a name is being typed.
    bool isRenaming() const;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

Q_SIGNALS:
    /// The editor of a name was closed.
    void renamingEnded();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    QString cellText(const QModelIndex &index) const override;
    bool isDimmed(const QModelIndex &index) const override;
    Qt::Alignment cellAlignment(const QModelIndex &index) const override;
    QString toolTipFor(const QModelIndex &index) const override;

private:
    QWidget *createNameEditor(QWidget *parent);
    QWidget *createEmojiEditor(QWidget *parent);
    void nameEditorDestroyed(const QObject *editor);
    void closeEmojiEditor(EmojiTextField *editor);
    bool filterEmojiEditor(EmojiTextField *editor, QEvent *event);

    EmojiTextField::CharacterPalette m_characterPalette;
    QPointer<QWidget> m_nameEditor; ///< The open RowNameEditor, if any.
};

} // namespace tembra
