#pragma once

#include <QAbstractTableModel>
#include <QList>

#include <vector>

namespace tembra {

struct EmojiEntry;

/// A list of emoji under a heading.
struct EmojiSection
{
    QString title; ///< Empty: no heading.
    QList<const EmojiEntry *> emoji;
};

/// Arranges sections of emoji in rows of a fixed number of cells. A heading is a row whose first cell
/// is the title. Only cells with an emoji are enabled.
class EmojiGridModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        EmojiRole = Qt::UserRole, ///< The characters to insert.
        HasSkinTonesRole, ///< Whether it comes in skin tones.
    };

    explicit EmojiGridModel(int columns, QObject *parent = nullptr);

    void setSections(const QList<EmojiSection> &sections);
    /// Whether `HasSkinTonesRole` tells of skin tones; it does by default.
    void setOffersSkinTones(bool offersSkinTones) { m_offersSkinTones = offersSkinTones; }

    bool isHeading(int row) const;
    /// Null for a heading and for a cell behind the last emoji of a section.
    const EmojiEntry *entry(const QModelIndex &index) const;
    QModelIndex first() const;
    QModelIndex last() const;
    /// The emoji @p steps behind or (negative) before, without regard to rows; at most the last.
    QModelIndex along(const QModelIndex &from, int steps) const;
    /// The emoji @p rows of emoji below or (negative) above, in the same column or the last before
    /// it; at most the last row.
    QModelIndex across(const QModelIndex &from, int rows) const;
    /// The row in which a section begins, its heading if it has one.
    int firstRow(int section) const;
    int sectionAt(int row) const;
    QModelIndex firstOf(int section) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    struct Row
    {
        int section = 0;
        qsizetype start = 0; ///< Of its emoji in the section.
        qsizetype count = 0; ///< None: a heading.
    };

    QModelIndex indexIn(int row, int column) const;

    int m_columns;
    bool m_offersSkinTones = true;
    QList<EmojiSection> m_sections;
    std::vector<Row> m_rows;
};

} // namespace tembra
