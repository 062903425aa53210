#pragma once

#include "Toolkit/Emoji/EmojiGrid.h"
#include "Toolkit/Emoji/EmojiGridModel.h"
#include "Toolkit/Emoji/EmojiGroupBar.h"
#include "Toolkit/Emoji/EmojiPalette.h"
#include "Toolkit/Emoji/RecentEmoji.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace tembra {

/// A test of the emoji palette, which it opens as a window. A thumb, then a heart were used last.
class PaletteTest : public QObject
{
protected:
    void openPalette()
    {
        using namespace Qt::StringLiterals;
        m_folder = std::make_unique<QTemporaryDir>();
        m_recent = std::make_unique<RecentEmoji>(m_folder->filePath(u"windows.ini"_s));
        m_recent->add(u"❤\uFE0F"_s);
        m_recent->add(u"👍🏽"_s);
        m_palette = std::make_unique<EmojiPalette>(*m_recent);
        m_search = m_palette->findChild<QLineEdit *>(u"emojiSearch"_s);
        m_groups = m_palette->findChild<EmojiGroupBar *>(u"emojiGroups"_s);
        m_grid = m_palette->findChild<EmojiGrid *>(u"emojiGrid"_s);
        m_name = m_palette->findChild<QLabel *>(u"emojiName"_s);
        m_choices = std::make_unique<QSignalSpy>(m_palette.get(), &EmojiPalette::emojiChosen);
        m_palette->move(200, 100);
        m_palette->show();
        QVERIFY(QTest::qWaitForWindowActive(m_palette.get()));
        QTRY_VERIFY(m_search->hasFocus());
    }

    void closePalette()
    {
        m_choices.reset();
        m_palette.reset();
        m_recent.reset(); // Writes its last changes, so before the folder goes.
        m_folder.reset();
    }

    /// The last one: the first may stand among the recent ones.
    QModelIndex indexOf(const QString &emoji) const
    {
        const QAbstractItemModel *model = m_grid->model();
        for (int row = model->rowCount() - 1; row >= 0; --row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                if (model->index(row, column).data(EmojiGridModel::EmojiRole).toString() == emoji)
                    return model->index(row, column);
            }
        }
        return {};
    }

    QString currentEmoji() const
    {
        return m_grid->currentIndex().data(EmojiGridModel::EmojiRole).toString();
    }

    /// Its middle, once it is scrolled into view.
    QPoint placeOf(const QString &emoji) const
    {
        m_grid->scrollTo(indexOf(emoji));
        return m_grid->visualRect(indexOf(emoji)).center();
    }

    static QWidget *popup() { return QApplication::activePopupWidget(); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<RecentEmoji> m_recent;
    std::unique_ptr<EmojiPalette> m_palette;
    QLineEdit *m_search = nullptr;
    EmojiGroupBar *m_groups = nullptr;
    EmojiGrid *m_grid = nullptr;
    QLabel *m_name = nullptr;
    std::unique_ptr<QSignalSpy> m_choices;
};

} // namespace tembra
